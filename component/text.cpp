#include "component/text.h"

#include <array>
#include <charconv>
#include <limits>
#include <new>

#include "aq/core/error.h"

namespace aq::com {
namespace {

int lengthOf(std::size_t size) {
  if (size > static_cast<std::size_t>(std::numeric_limits<int>::max())) throw std::bad_alloc();
  return static_cast<int>(size);
}

/// With `MB_ERR_INVALID_CHARS`, returns an empty string if the bytes are not valid in the code
/// page.
std::wstring widened(std::string_view bytes, UINT page, DWORD flags) {
  const int size = lengthOf(bytes.size());
  const int needed = MultiByteToWideChar(page, flags, bytes.data(), size, nullptr, 0);
  std::wstring text(static_cast<std::size_t>(needed), L'\0');
  MultiByteToWideChar(page, flags, bytes.data(), size, text.data(), needed);
  return text;
}

/// Converts `text` to `bytes`; returns whether every character could be converted.
bool narrow(std::wstring_view text, UINT page, std::string& bytes) {
  const bool isUtf8 = page == CP_UTF8;
  const DWORD flags = isUtf8 ? WC_ERR_INVALID_CHARS : WC_NO_BEST_FIT_CHARS;
  BOOL lacks = FALSE;
  BOOL* const told = isUtf8 ? nullptr : &lacks;
  const int size = lengthOf(text.size());
  const int needed = WideCharToMultiByte(page, flags, text.data(), size, nullptr, 0, nullptr, told);
  if (needed == 0 || lacks != FALSE) return false;
  bytes.resize(static_cast<std::size_t>(needed));
  WideCharToMultiByte(page, flags, text.data(), size, bytes.data(), needed, nullptr, told);
  return true;
}

std::string codeText(wchar_t letter) {
  std::array<char, 8> digits{};
  const auto past =
      std::to_chars(digits.data(), digits.data() + digits.size(), unsigned{letter}, 16);
  return "U+" + std::string(digits.data(), past.ptr);
}

[[noreturn]] void refuse(std::wstring_view text, UINT page) {
  std::string bytes;
  for (const wchar_t& letter : text) {
    if (!narrow({&letter, 1}, page, bytes)) {
      throw Error(ErrorCode::InvalidArgument, "the code page " + std::to_string(page) +
                                                  " has no character " + codeText(letter));
    }
  }
  throw Error(ErrorCode::InvalidArgument, "the text is not valid UTF-16");
}

}  // namespace

std::string bytesOf(std::wstring_view text, TextKind kind) {
  std::string bytes;
  if (text.empty()) return bytes;
  const UINT page = kind == TextKind::Name ? CP_UTF8 : GetACP();
  if (!narrow(text, page, bytes)) refuse(text, page);
  return bytes;
}

std::wstring wideOf(std::string_view bytes, TextKind kind) {
  if (bytes.empty()) return {};
  if (kind == TextKind::Name) {
    if (auto text = widened(bytes, CP_UTF8, MB_ERR_INVALID_CHARS); !text.empty()) return text;
  }
  return widened(bytes, CP_ACP, 0);
}

BSTR hostText(std::wstring_view text) {
  const BSTR made = SysAllocStringLen(text.data(), static_cast<UINT>(text.size()));
  if (made == nullptr) throw std::bad_alloc();
  return made;
}

BSTR hostText(std::string_view bytes, TextKind kind) { return hostText(wideOf(bytes, kind)); }

}  // namespace aq::com
