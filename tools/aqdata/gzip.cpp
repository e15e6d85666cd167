#include "tools/aqdata/gzip.h"

#include <aq/core/error.h>
#include <fmt/format.h>

#ifdef AQDATA_ZLIB
#include <zlib.h>
#endif

#include <algorithm>
#include <limits>
#include <vector>

#include "tools/aqdata/session.h"

namespace aqdata {

bool isGzip(std::string_view bytes) { return bytes.starts_with("\x1F\x8B"); }

#ifdef AQDATA_ZLIB
std::string unpacked(std::string_view bytes, const std::string& path) {
  constexpr int kGzip = 16 + MAX_WBITS;
  z_stream stream{};
  if (inflateInit2(&stream, kGzip) != Z_OK) throw Failure("out of memory while unpacking");
  std::string text;
  std::vector<Bytef> block(std::size_t{256} * 1024);
  std::vector<Bytef> packed(bytes.begin(), bytes.end());
  stream.next_in = packed.data();
  stream.avail_in =
      static_cast<uInt>(std::min<std::size_t>(packed.size(), std::numeric_limits<uInt>::max()));
  int state = Z_OK;
  while (state == Z_OK || (state == Z_STREAM_END && stream.avail_in != 0)) {
    if (state == Z_STREAM_END && inflateReset(&stream) != Z_OK) break;  // another member follows
    stream.next_out = block.data();
    stream.avail_out = static_cast<uInt>(block.size());
    state = inflate(&stream, Z_NO_FLUSH);
    text.append(block.begin(), block.end() - static_cast<std::ptrdiff_t>(stream.avail_out));
  }
  inflateEnd(&stream);
  if (state == Z_STREAM_END) return text;
  throw Failure(
      fmt::format("{}: compressed with gzip, but truncated or damaged", aq::escaped(path)));
}
#else
std::string unpacked(std::string_view, const std::string& path) {
  throw Failure(
      fmt::format("{}: compressed with gzip; this program is built without zlib, so unpack it "
                  "with gunzip",
                  aq::escaped(path)));
}
#endif

}  // namespace aqdata
