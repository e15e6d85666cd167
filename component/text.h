#pragma once

#include <string>
#include <string_view>

#include "component/com.h"

// Converts text between the library, which uses bytes, and hosts, which use UTF-16.

namespace aq::com {

enum class TextKind {
  Plain,  ///< in the system's code page, as in files that hosts write
  Name,   ///< file names and messages: UTF-8; other bytes are interpreted in the code page
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
