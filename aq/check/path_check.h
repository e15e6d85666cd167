#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <vector>

#include "aq/check/reporter.h"

namespace aq {

/// Where a source was at a time of day, in the unit of its file.
struct PathPlace {
  double time;
  std::array<double, 3> at;
  std::size_t line;
  std::optional<std::int32_t> record = {};
};

/// Reports places far off the line between their neighbours, where those of nearly all others are
/// near it: one finding a run of them.
void checkJumps(const std::vector<PathPlace>& path, const Reporter& report);

/// Reports times without a place that are much longer than usual.
void checkGaps(const std::vector<PathPlace>& path, const Reporter& report);

}  // namespace aq
