#include "aq/check/level_jumps.h"

#include <cmath>
#include <limits>
#include <string>
#include <utility>

#include "aq/core/enumerations.h"
#include "aq/text/number_text.h"

namespace aq {
namespace {

constexpr double kNoJump = std::numeric_limits<double>::quiet_NaN();

/// How far a level is above the mean of those before and after; NaN if one of the three is not
/// valid, or if those before and after differ too much.
double jumpOf(double before, double here, double after) {
  constexpr double kSame = 6;  // dB
  for (const double level : {before, here, after}) {
    if (level == double{AQ_INVALID_LEVEL}) return kNoJump;
  }
  return std::abs(before - after) <= kSame ? here - (before + after) / 2 : kNoJump;
}

/// Excludes levels out of range, which are reported as such.
bool isJump(double level, double off) {
  return level >= kLowestLevel && level <= kHighestLevel && (off < -20 || off > 40);
}

}  // namespace

bool LevelJumps::Row::precedes(const Row& next) const {
  return line != 0 && record + 1 == next.record && band == next.band &&
         levels.size() == next.levels.size();
}

void LevelJumps::see(std::int16_t record, std::size_t line, std::int16_t band,
                     std::vector<double> levels) {
  Row here{record, line, band, std::move(levels)};
  if (rows_[0].precedes(rows_[1]) && rows_[1].precedes(here)) compare(rows_[0], rows_[1], here);
  rows_[0] = std::move(rows_[1]);
  rows_[1] = std::move(here);
}

void LevelJumps::compare(const Row& before, const Row& here, const Row& after) const {
  const auto off = [&](std::size_t i) {
    return i < here.levels.size() ? jumpOf(before.levels[i], here.levels[i], after.levels[i])
                                  : kNoJump;
  };
  for (std::size_t i = 0; i < here.levels.size(); ++i) {
    const double jump = off(i);
    if (!isJump(here.levels[i], jump)) continue;
    const double half = std::abs(jump) / 2;
    if (std::abs(off(i + 1)) >= half || (i > 0 && std::abs(off(i - 1)) >= half)) continue;
    const auto band = static_cast<std::int16_t>(here.band + static_cast<std::int16_t>(i));
    FindingPlace place{.line = here.line, .record = here.record, .band = band};
    place.field = firstField_ + static_cast<std::size_t>(band - low_);
    report_(Kind::LevelJump, place,
            numberText(here.levels[i]) + " dB between " + numberText(before.levels[i]) + " and " +
                numberText(after.levels[i]) + " dB in the records before and after");
  }
}

}  // namespace aq
