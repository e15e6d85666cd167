#include "aq/noise/tone_procedure.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace aq {
namespace {

constexpr double kSlopeChange = 5;  // dB, beyond which a slope is marked
constexpr double kNone = std::numeric_limits<double>::quiet_NaN();

double bandAt(std::size_t place) { return kFirstToneBand + static_cast<double>(place); }

/// A tone counts double from 500 to 5000 Hz (A36.4.3.1, step 9).
double weightAt(std::size_t place) { return bandAt(place) >= 27 && bandAt(place) <= 37 ? 2 : 1; }

// Steps are written so that the compiler handles several records in one instruction: every
// candidate is computed, and a choice is one comparison between two values.

/// The correction in dB of a tone that counts once, from its difference to the background; 0 for
/// NaN. The curve is the minimum of its three lines.
double correctionOf(double difference) {
  const double third = difference / 3;
  const double rising = third - 0.5;
  const double steady = third / 2;
  const double lower = steady < rising ? steady : rising;
  const double least = 10.0 / 3 < lower ? 10.0 / 3 : lower;
  return least > 0 ? least : 0;
}

}  // namespace

void ToneProcedure::take(const RecordBlock& block) {
  findSlopes(block);
  adjustLevels();
  findBackground();
  correct();
  findLargest();
}

std::size_t ToneProcedure::count(std::size_t record) const {
  std::size_t count = 0;
  while (!std::isnan(level[count][record])) ++count;  // no level counts above the last band
  return count;
}

bool ToneProcedure::slopeMarked(std::size_t place, std::size_t record) const {
  return std::abs(slopeChange[place][record]) > kSlopeChange;
}

void ToneProcedure::findSlopes(const RecordBlock& block) {
  for (std::size_t i = 0; i < kBands; ++i)
    level[i] = block.levels(kFirstToneBand + static_cast<int>(i));
  level[kBands].fill(kNone);
  level[kBands + 1].fill(kNone);
  slope[0].fill(kNone);
  for (std::size_t i = 1; i < level.size(); ++i) {
    for (std::size_t r = 0; r < kBlockRecords; ++r) {
      level[i][r] = std::isnan(level[i - 1][r]) ? kNone : level[i][r];
      slope[i][r] = level[i][r] - level[i - 1][r];
      slopeChange[i][r] = slope[i][r] - slope[i - 1][r];
    }
  }
}

void ToneProcedure::adjustLevels() {
  adjusted[0] = level[0];
  adjustedSlope[0].fill(kNone);
  for (std::size_t i = 1; i <= kBands; ++i) {
    for (std::size_t r = 0; r < kBlockRecords; ++r) {
      const double own = level[i][r];
      const double below = level[i - 1][r];
      const double above = level[i + 1][r];
      const double mean = (below + above) / 2;
      const double onward = below + slope[i - 1][r];
      const double other = std::isnan(above) ? onward : mean;
      // A slope that changes by more than the limit removes a level: the one after a rise, or
      // before a fall.
      const double fallsAbove = slope[i + 1][r] <= 0 ? 1 : 0;
      const double bendsDown = slopeChange[i + 1][r] < -kSlopeChange ? fallsAbove : 0;
      const double bends = slopeChange[i][r] > kSlopeChange ? 1 : bendsDown;
      const double mark = slope[i][r] > 0 ? bends : 0;
      const double instead = mark == 0 ? own : other;
      levelMark[i][r] = mark;
      adjusted[i][r] = instead;
      const double change = instead - adjusted[i - 1][r];
      const double changeBelow = adjustedSlope[i - 1][r];
      adjustedSlope[i][r] = std::isnan(change) ? changeBelow : change;
    }
  }
  adjustedSlope[0] = adjustedSlope[1];
}

void ToneProcedure::findBackground() {
  BlockRow current = level[0];
  background[0] = current;
  for (std::size_t i = 0; i + 1 < kBands; ++i) {
    BlockRow mean;
    for (std::size_t r = 0; r < kBlockRecords; ++r) {
      mean[r] = (adjustedSlope[i][r] + adjustedSlope[i + 1][r] + adjustedSlope[i + 2][r]) / 3;
      current[r] += mean[r];
    }
    meanSlope[i] = mean;
    background[i + 1] = current;
  }
}

void ToneProcedure::correct() {
  for (std::size_t i = 0; i < kBands; ++i) {
    const double weight = weightAt(i);
    for (std::size_t r = 0; r < kBlockRecords; ++r) {
      difference[i][r] = level[i][r] - background[i][r];
      correction[i][r] = weight * correctionOf(difference[i][r]);
    }
  }
}

void ToneProcedure::findLargest() {
  BlockRow most{};
  for (std::size_t i = 0; i < kBands; ++i) {
    for (std::size_t r = 0; r < kBlockRecords; ++r) {
      const double found = correction[i][r];
      const double before = most[r];
      most[r] = found > before ? found : before;
    }
  }
  BlockRow lowest{};
  for (std::size_t i = kBands; i-- > 0;) {
    const double band = bandAt(i);
    for (std::size_t r = 0; r < kBlockRecords; ++r) {
      const double higher = lowest[r];
      lowest[r] = correction[i][r] == most[r] ? band : higher;
    }
  }
  for (std::size_t r = 0; r < kBlockRecords; ++r) {
    const double band = lowest[r];
    largestBand[r] = most[r] > 0 ? band : 0;
  }
  largest = most;
}

}  // namespace aq
