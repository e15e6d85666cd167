#pragma once

#include <string>
#include <string_view>

namespace aqdata {

/// Whether the bytes are a file compressed with gzip.
[[nodiscard]] bool isGzip(std::string_view bytes);

/// The unpacked bytes. Throws `Failure` for damaged bytes, or if the tool was built without zlib.
[[nodiscard]] std::string unpacked(std::string_view bytes, const std::string& path);

}  // namespace aqdata
