#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

#include "aq/check/reporter.h"
#include "aq/core/file_failure.h"

// What other programs make of a text file on its way: told once, with what mends it, instead of all
// that follows from it.
namespace aq {

/// The first 64 KiB of a file. Throws `platform::SystemError`.
std::string headOf(const std::string& path);

/// What UTF-8 text may begin with, and these files do not.
inline constexpr std::string_view kByteOrderMark = "\xEF\xBB\xBF";

struct TextFault {
  Kind kind;
  std::string message;
  std::size_t line = 1;
};

/// Why a file is no text of single bytes; nothing when it is.
std::optional<TextFault> faultOfBytes(std::string_view head);

/// Why a file whose kind is not known, or that does not read, is as it is; nothing when no program
/// is known that makes it so.
std::optional<TextFault> faultOfLines(std::string_view head);

/// Whether `text` looks like a number that was divided at its decimal comma, as in "18,5".
bool isDecimalComma(std::string_view text);

inline constexpr std::string_view kDecimalCommaCure =
    "numbers have decimal commas, which divide fields here; write them with points";

}  // namespace aq
