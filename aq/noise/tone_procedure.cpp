#include "aq/noise/tone_procedure.h"

#include <algorithm>
#include <cmath>
#include <tuple>

namespace aq {
namespace {

constexpr double kSlopeChange = 5;  // dB, beyond which a slope is marked

std::int16_t bandAt(std::size_t place) {
  return static_cast<std::int16_t>(kFirstToneBand + static_cast<int>(place));
}

/// A tone counts double from 500 to 5000 Hz.
bool countsDouble(std::int16_t band) { return band >= 27 && band <= 37; }

/// dB, from the difference to the background. The pieces of the curve are the least of their three
/// lines, so that no branch is to be guessed.
double correctionOf(double difference, std::int16_t band) {
  if (countsDouble(band)) {
    return std::max(0.0, std::min({2 * difference / 3 - 1, difference / 3, 20.0 / 3}));
  }
  return std::max(0.0, std::min({difference / 3 - 0.5, difference / 6, 10.0 / 3}));
}

}  // namespace

ToneProcedure::ToneProcedure(const CountedLevels& record) {
  level = record.levelsFrom<std::tuple_size_v<Column>>(kFirstToneBand);
  while (count < level.size() && !std::isnan(level[count])) ++count;
  if (count == 0) return;
  findSlopes();
  markLevels();
  adjustLevels();
  findBackground();
  correct();
}

void ToneProcedure::findSlopes() {
  for (std::size_t i = 1; i < count; ++i) slope[i] = level[i] - level[i - 1];
}

void ToneProcedure::markLevels() {
  for (std::size_t i = 2; i < count; ++i) {
    slopeMarked[i] = std::abs(slope[i] - slope[i - 1]) > kSlopeChange;
    if (!slopeMarked[i]) continue;
    if (slope[i] > 0 && slope[i] > slope[i - 1]) levelMarked[i] = true;
    if (slope[i] <= 0 && slope[i - 1] > 0) levelMarked[i - 1] = true;
  }
}

void ToneProcedure::adjustLevels() {
  adjusted = level;
  for (std::size_t i = 1; i + 1 < count; ++i) {
    if (levelMarked[i]) adjusted[i] = (level[i - 1] + level[i + 1]) / 2;
  }
  const std::size_t last = count - 1;
  if (levelMarked[last]) adjusted[last] = level[last - 1] + slope[last - 1];
  for (std::size_t i = 1; i < count; ++i) adjustedSlope[i] = adjusted[i] - adjusted[i - 1];
  if (count > 1) adjustedSlope[0] = adjustedSlope[1];
}

void ToneProcedure::findBackground() {
  const std::size_t last = count - 1;
  background[0] = level[0];
  for (std::size_t i = 0; i < last; ++i) {
    const double next = adjustedSlope[i + 1];
    // Above the last band its own slope goes on.
    const double afterNext = i + 2 <= last ? adjustedSlope[i + 2] : adjustedSlope[last];
    meanSlope[i] = (adjustedSlope[i] + next + afterNext) / 3;
    background[i + 1] = background[i] + meanSlope[i];
  }
}

void ToneProcedure::correct() {
  constexpr std::size_t kLeastBands = 3;
  for (std::size_t i = 0; i < count; ++i) {
    difference[i] = level[i] - background[i];
    correction[i] = count < kLeastBands ? 0 : correctionOf(difference[i], bandAt(i));
    if (correction[i] > largest) {
      largest = correction[i];
      largestBand = bandAt(i);
    }
  }
}

}  // namespace aq
