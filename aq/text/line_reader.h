#pragma once

#include <cstddef>
#include <limits>
#include <memory>
#include <string>
#include <string_view>

#include "aq/core/export.h"
#include "aq/core/platform.h"

namespace aq {

/// Reads a text file line by line, with one block of bytes in memory at a time; the block grows
/// if a line does not fit in it. LF and CRLF end a line, the last line needs neither, and any other
/// byte is content. Throws `platform::SystemError`.
class AQ_API LineReader {
 public:
  /// Reads at most `most` bytes; ignores what follows them.
  explicit LineReader(const std::string& path,
                      std::size_t most = std::numeric_limits<std::size_t>::max());

  /// Goes to the next line; false after the last one.
  [[nodiscard]] bool next();

  /// The line without its line ending. Valid until `next`.
  [[nodiscard]] std::string_view line() const { return line_; }

  /// Whether the line has a line ending, which the last one may lack. True before the first line.
  [[nodiscard]] bool ended() const { return ended_; }

  /// The line's number, from 1; after the last line, the number of lines.
  [[nodiscard]] std::size_t number() const { return number_; }

 private:
  [[nodiscard]] bool fill();
  void take(std::size_t size, std::size_t withEnd);

  platform::InputFile file_;
  std::unique_ptr<char[]> block_;
  std::size_t capacity_;   // of the block
  std::size_t most_;       // largest number of bytes still to be read
  std::size_t begin_ = 0;  // start of the bytes not yet taken
  std::size_t end_ = 0;    // end of the bytes not yet taken
  std::string_view line_;
  std::size_t number_ = 0;
  bool ended_ = true;
};

}  // namespace aq
