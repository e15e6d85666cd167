#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

#include "aq/check/reporter.h"
#include "aq/core/file_failure.h"

// Damage that other programs do to text files: reported once, with a remedy, instead of each of its
// consequences.
namespace aq {

/// The first 64 KiB of a file. Throws `platform::SystemError`.
std::string headOf(const std::string& path);

/// UTF-8 text may begin with this mark; measurement files do not.
inline constexpr std::string_view kByteOrderMark = "\xEF\xBB\xBF";

struct TextFault {
  Kind kind;
  std::string message;
  std::size_t line = 1;
};

/// Why a file is not plain text: compression or UTF-16; nothing if it shows neither.
std::optional<TextFault> faultOfBytes(std::string_view head);

/// The likely reason why a file is of unknown kind or cannot be read; nothing if it shows no known
/// damage.
std::optional<TextFault> faultOfLines(std::string_view head);

/// Whether `text` looks like a number with a decimal comma, such as "18,5".
bool isDecimalComma(std::string_view text);

inline constexpr std::string_view kDecimalCommaCure =
    "numbers have decimal commas, but commas separate fields here; write decimal points";

}  // namespace aq
