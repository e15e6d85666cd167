#include "aq/core/error.h"

#include <array>

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

std::string shown(std::string_view text) {
  std::string quoted = "\"";
  for (const char c : text) {
    if (quoted.size() > kLongestShown) break;
    appendShown(quoted, static_cast<unsigned char>(c));
  }
  if (quoted.size() > kLongestShown) {
    quoted.resize(kLongestShown - 2);
    quoted += "...";
  }
  return quoted + '"';
}

}  // namespace aq
