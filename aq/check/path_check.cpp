#include "aq/check/path_check.h"

#include <algorithm>
#include <cmath>
#include <string>

#include "aq/check/record_lines.h"

namespace aq {
namespace {

constexpr std::size_t kPlacesEnough = 8;  // positions needed to know what is usual

double middleOf(std::vector<double> values) {
  const auto middle = values.begin() + static_cast<std::ptrdiff_t>(values.size() / 2);
  std::nth_element(values.begin(), middle, values.end());
  return *middle;
}

double secondsFrom(const PathPlace& one, const PathPlace& other) {
  return std::remainder(other.time - one.time, kSecondsPerDay);
}

double lengthBetween(const std::array<double, 3>& one, const std::array<double, 3>& other) {
  return std::hypot(one[0] - other[0], one[1] - other[1], one[2] - other[2]);
}

/// How far a position is from where the straight line between its neighbours would put it at that
/// time.
double lineOff(const PathPlace& before, const PathPlace& here, const PathPlace& after) {
  const double whole = secondsFrom(before, after);
  const double part = whole > 0 ? std::clamp(secondsFrom(before, here) / whole, 0.0, 1.0) : 0.5;
  std::array<double, 3> expected{};
  for (std::size_t i = 0; i < 3; ++i) {
    expected[i] = before.at[i] + part * (after.at[i] - before.at[i]);
  }
  return lengthBetween(here.at, expected);
}

}  // namespace

void checkJumps(const std::vector<PathPlace>& path, const Reporter& report) {
  if (path.size() < kPlacesEnough) return;
  std::vector<double> offs(path.size(), 0.0);  // the first and the last have only one neighbour
  for (std::size_t i = 1; i + 1 < path.size(); ++i) {
    offs[i] = lineOff(path[i - 1], path[i], path[i + 1]);
  }
  // Turns, and rounding to tenths of a second or metre, cause smaller distances.
  const double limit = std::max(20 * middleOf(offs), 10.0);
  const auto isOff = [&](std::size_t i) {
    return offs[i] > limit && offs[i] > lengthBetween(path[i - 1].at, path[i + 1].at) / 4;
  };
  for (std::size_t i = 1; i + 1 < path.size(); ++i) {
    if (!isOff(i)) continue;
    std::size_t worst = i;
    for (; i + 2 < path.size() && isOff(i + 1); ++i) {
      if (offs[i + 1] >= offs[worst]) worst = i + 1;
    }
    report(Kind::PositionJump, {.line = path[worst].line, .record = path[worst].record},
           "the position is " + numberText(std::round(offs[worst] * 10) / 10) +
               " from the line between those before and after");
  }
}

void checkGaps(const std::vector<PathPlace>& path, const Reporter& report) {
  constexpr double kLong = 2;  // seconds
  if (path.size() < kPlacesEnough) return;
  std::vector<double> steps;
  for (std::size_t i = 1; i < path.size(); ++i) steps.push_back(secondsFrom(path[i - 1], path[i]));
  const double usual = middleOf(steps);
  for (std::size_t i = 0; i < steps.size(); ++i) {
    if (steps[i] <= kLong || steps[i] <= 10 * usual) continue;
    report(Kind::TimeGap, {.line = path[i + 1].line, .field = 1},
           "no position for " + secondsText(steps[i]) + "; positions are usually " +
               secondsText(usual) + " apart");
  }
}

}  // namespace aq
