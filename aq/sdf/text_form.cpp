#include "aq/sdf/text_form.h"

#include <charconv>
#include <limits>

#include "aq/text/number_text.h"

namespace aq::sdf::form {
namespace {

bool isEscaped(char c) {
  const auto byte = static_cast<unsigned char>(c);
  return byte < ' ' || byte == 0x7f || c == '\\';
}

/// The character of an escape such as `\x0a` at the start of `text`; 0 if there is none, or if
/// `quoted` never writes it.
char escapedAt(std::string_view text) {
  constexpr std::size_t kLength = 4;
  constexpr int kHexadecimal = 16;
  if (text.size() < kLength || !text.starts_with("\\x")) return '\0';
  unsigned byte = 0;
  const auto read = std::from_chars(text.data() + 2, text.data() + kLength, byte, kHexadecimal);
  const auto c = static_cast<char>(static_cast<unsigned char>(byte));
  return read.ptr == text.data() + kLength && isEscaped(c) ? c : '\0';
}

}  // namespace

std::string quoted(std::string_view text) {
  constexpr std::string_view kDigits = "0123456789abcdef";
  std::string value = "\"";
  for (const char c : text) {
    if (isEscaped(c)) {
      const auto byte = static_cast<unsigned char>(c);
      value += "\\x";
      value += kDigits[byte >> 4U];
      value += kDigits[byte & 0xfU];
    } else {
      value += c;
    }
  }
  return value + '"';
}

double storedFrom(std::string_view text) {
  constexpr double kInfinite = std::numeric_limits<double>::infinity();
  const std::string word = upperCased(trimmed(text));
  if (word == "NAN" || word == "-NAN") return std::numeric_limits<double>::quiet_NaN();
  if (word == "INF" || word == "-INF") return word == "INF" ? kInfinite : -kInfinite;
  return doubleFrom(text);
}

std::string unquoted(std::string_view value) {
  value = trimmed(value);
  if (value.size() > 1 && value.front() == '"' && value.back() == '"') {
    value = value.substr(1, value.size() - 2);
  }
  std::string text;
  while (!value.empty()) {
    constexpr std::size_t kEscape = 4;
    const char c = escapedAt(value);
    text += c != '\0' ? c : value.front();
    value.remove_prefix(c != '\0' ? kEscape : 1);
  }
  return text;
}

}  // namespace aq::sdf::form
