#pragma once

#include <cstdint>
#include <string>

#include "aq/core/export.h"
#include "aq/text/fields.h"
#include "aq/text/line_reader.h"

namespace aq {

/// Counts data lines. Hosts count them in 16 bits, so reading fails at data line 32768.
class DataLineLimit {
 public:
  /// Counts a data line and returns its number, from 1.
  std::int32_t count(const LineReader& lines) {
    if (number_ == kMost) failRead(lines.number(), 0, "no more than 32767 lines", "one more");
    return ++number_;
  }

 private:
  static constexpr std::int32_t kMost = 32767;

  std::int32_t number_ = 0;
};

}  // namespace aq
