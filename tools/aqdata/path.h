#pragma once

#include <filesystem>
#include <string>
#include <string_view>

namespace aqdata {

/// A name in UTF-8 as a path. On Windows, a path made from the bytes themselves would be
/// decoded with the system's code page.
[[nodiscard]] inline std::filesystem::path pathOf(std::string_view name) {
  return std::u8string(name.begin(), name.end());
}

}  // namespace aqdata
