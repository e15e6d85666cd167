#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <vector>

#include "aq/check/reporter.h"

namespace aq {

/// Where a source was at a time of day, in the length unit of its file.
struct PathPlace {
  double time;  ///< seconds after midnight
  std::array<double, 3> at;
  std::size_t line;
  std::optional<std::int32_t> record = {};
};

/// Reports positions much farther than most from the line between their neighbours: one finding per
/// run of such positions. Reports nothing for fewer than 8 positions.
void checkJumps(const std::vector<PathPlace>& path, const Reporter& report);

/// Reports time gaps between positions that are much longer than usual, and longer than 2 s.
/// Reports nothing for fewer than 8 positions.
void checkGaps(const std::vector<PathPlace>& path, const Reporter& report);

}  // namespace aq
