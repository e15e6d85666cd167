#pragma once

#include <string>
#include <string_view>

namespace aqdata {

/// Whether the bytes begin as a file compressed with gzip does.
[[nodiscard]] bool isGzip(std::string_view bytes);

/// The unpacked bytes. Throws `Failure` if they are truncated or damaged, or if the tool was built
/// without zlib.
[[nodiscard]] std::string unpacked(std::string_view bytes, const std::string& path);

}  // namespace aqdata
