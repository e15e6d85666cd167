#include "aq/text/line_reader.h"

#include <algorithm>
#include <cstring>

namespace aq {
namespace {

constexpr std::size_t kBlock = std::size_t{64} * 1024;

}  // namespace

LineReader::LineReader(const std::string& path, std::size_t most)
    : file_(path),
      block_(std::make_unique_for_overwrite<char[]>(kBlock)),
      capacity_(kBlock),
      most_(most) {}

bool LineReader::next() {
  std::size_t searched = 0;
  for (;;) {
    const char* const first = block_.get() + begin_;
    const std::size_t size = end_ - begin_;
    const void* const found = std::memchr(first + searched, '\n', size - searched);
    if (found != nullptr) {
      const auto length = static_cast<std::size_t>(static_cast<const char*>(found) - first);
      const bool carriageReturn = length != 0 && first[length - 1] == '\r';
      take(carriageReturn ? length - 1 : length, length + 1);
      return true;
    }
    searched = size;
    if (!fill()) break;
  }
  if (begin_ == end_) return false;
  take(end_ - begin_, end_ - begin_);
  return true;
}

void LineReader::take(std::size_t size, std::size_t withEnd) {
  line_ = {block_.get() + begin_, size};
  ended_ = size != withEnd;
  begin_ += withEnd;
  ++number_;
}

/// Reads more bytes after those not yet taken; false at the end of the file or of the allowed
/// number of bytes.
bool LineReader::fill() {
  const std::size_t kept = end_ - begin_;
  if (kept == capacity_) {
    auto larger = std::make_unique_for_overwrite<char[]>(capacity_ * 2);
    std::memcpy(larger.get(), block_.get() + begin_, kept);
    block_ = std::move(larger);
    capacity_ *= 2;
  } else if (begin_ != 0) {
    std::memmove(block_.get(), block_.get() + begin_, kept);
  }
  begin_ = 0;
  end_ = kept;
  const std::size_t wanted = std::min(capacity_ - end_, most_);
  const std::size_t got = file_.read({block_.get() + end_, wanted});
  end_ += got;
  most_ -= got;
  return got != 0;
}

}  // namespace aq
