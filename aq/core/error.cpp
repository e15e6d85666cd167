#include "aq/core/error.h"

namespace aq {
namespace {

constexpr std::size_t kLongestShown = 60;

void appendShown(std::string& text, unsigned char byte) {
  constexpr std::string_view kHex = "0123456789abcdef";
  if (byte >= ' ' && byte <= '~') {
    text += static_cast<char>(byte);
  } else if (byte == '\t') {
    text += "\\t";
  } else {
    text += {'\\', 'x', kHex[byte >> 4], kHex[byte & 15]};
  }
}

}  // namespace

std::string escaped(std::string_view text) {
  std::string line;
  for (const char c : text) {
    const auto byte = static_cast<unsigned char>(c);
    if (byte < 0x80) {
      appendShown(line, byte);
    } else {
      line += c;
    }
  }
  return line;
}

std::string shown(std::string_view text) {
  constexpr std::string_view kCut = "...";
  std::string quoted = "\"";
  std::size_t whole = quoted.size();  // the size that still leaves room for `kCut`
  for (const char c : text) {
    appendShown(quoted, static_cast<unsigned char>(c));
    if (quoted.size() <= kLongestShown + 1 - kCut.size()) whole = quoted.size();
    if (quoted.size() <= kLongestShown + 1) continue;
    quoted.resize(whole);
    quoted += kCut;
    break;
  }
  return quoted + '"';
}

}  // namespace aq
