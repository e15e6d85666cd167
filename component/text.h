#pragma once

#include <string>
#include <string_view>

#include "component/com.h"

// Converts text between the library, which uses bytes, and hosts, which use UTF-16.

namespace aq::com {

enum class TextKind {
  Plain,  ///< in the code page of the system, as the hosts' own files are
  Name,   ///< names of files and messages: UTF-8, or the code page if the bytes are not UTF-8
};

/// Throws `InvalidArgument` for an unpaired surrogate and for a character that the code page lacks.
[[nodiscard]] std::string bytesOf(std::wstring_view text, TextKind kind);

[[nodiscard]] std::wstring wideOf(std::string_view bytes, TextKind kind);

/// `bytes` as text that the host must free. Throws `bad_alloc`.
[[nodiscard]] BSTR hostText(std::string_view bytes, TextKind kind);
[[nodiscard]] BSTR hostText(std::wstring_view text);

/// The content of a host's string; a null string is empty.
[[nodiscard]] inline std::wstring_view textOf(BSTR text) {
  return text == nullptr ? std::wstring_view() : std::wstring_view(text, SysStringLen(text));
}

}  // namespace aq::com
