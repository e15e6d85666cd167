#pragma once

#include <string>
#include <string_view>

namespace aqdata {

/// Whether the bytes are those of a file that gzip has packed.
[[nodiscard]] bool isGzip(std::string_view bytes);

/// What was packed. Throws `Failure` for damaged bytes, and where the tool is built without zlib.
[[nodiscard]] std::string unpacked(std::string_view bytes, const std::string& path);

}  // namespace aqdata
