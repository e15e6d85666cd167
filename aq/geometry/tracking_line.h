#pragma once

#include <cstdint>
#include <memory>

#include "aq/core/export.h"
#include "aq/geometry/position.h"
#include "aq/text/line_reader.h"

namespace aq {

/// One data line of a tracking file.
struct TrackingLine {
  std::shared_ptr<AQ_Position> position;
  std::uint8_t quality;  ///< the RT20 figure; 0 is the best
};

/// How many lines a tracking file has before its data.
inline constexpr std::size_t kTrackingHeaderLines = 6;

/// Parses the current line of `lines`. Throws `ReadFailure`.
[[nodiscard]] AQ_API TrackingLine trackingLineFrom(const LineReader& lines);

}  // namespace aq
