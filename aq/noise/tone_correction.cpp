#include "aq/noise/tone_correction.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <span>

#include "aq/noise/level_table.h"
#include "aq/noise/record_levels.h"
#include "aq/noise/tone_procedure.h"

namespace aq {
namespace {

ToneStep stepAt(const ToneProcedure<double>& procedure, std::size_t i, std::size_t count) {
  ToneStep step;
  step.band = static_cast<std::int16_t>(kFirstToneBand + static_cast<int>(i));
  step.level = procedure.level[i];
  if (i > 0) step.slope = procedure.slope[i];
  step.slopeMarked = i > 0 && std::abs(procedure.slopeChange(i)) > kMarkedSlopeChange;
  step.levelMarked = procedure.isReplaced[i] != 0;
  step.adjusted = procedure.adjusted[i];
  if (count > 1) step.adjustedSlope = procedure.adjustedSlope[i];
  if (i + 1 < count) step.meanSlope = procedure.meanSlope[i];
  step.background = procedure.background[i];
  step.difference = procedure.difference[i];
  step.correction = bandCorrection(i, procedure.difference[i]);
  return step;
}

std::size_t toneBandsOf(const CountedLevels& record) {
  return static_cast<std::size_t>(record.countRun(kFirstToneBand, kLastToneBand));
}

std::int32_t bandAt(std::size_t place) { return kFirstToneBand + static_cast<std::int32_t>(place); }

/// The lowest of the candidate bands whose correction is `largest`; 0 if `largest` is 0.
/// `differenceAt` returns the level minus the background at an index.
template <class DifferenceAt>
std::int16_t bandOf(double largest, std::uint32_t candidates, const DifferenceAt& differenceAt) {
  for (; largest > 0 && candidates != 0; candidates &= candidates - 1) {
    const auto place = static_cast<std::size_t>(std::countr_zero(candidates));
    if (bandCorrection(place, differenceAt(place)) != largest) continue;
    return static_cast<std::int16_t>(bandAt(place));
  }
  return 0;
}

}  // namespace

void Tones::find(const std::array<CountedLevels, kLanes>& records, bool withBands) {
  static const LevelTable decibels([](double level) { return level; });
  std::array<std::size_t, kLanes> counts{};
  std::array<std::span<const LevelCode>, kLanes> codes;
  for (std::size_t r = 0; r < kLanes; ++r) {
    counts[r] = toneBandsOf(records[r]);
    const bool areCodes = records[r].areInTable() && counts[r] > 0;
    if (areCodes) codes[r] = records[r].codes(kFirstToneBand, bandAt(counts[r] - 1));
  }
  const std::size_t most = *std::max_element(counts.begin(), counts.end());
  for (std::size_t i = 0; i < most; ++i) {
    procedure_.level[i] = lanesOf([&](std::size_t r) {
      return i < codes[r].size() ? decibels[codes[r][i]] : records[r].level(bandAt(i));
    });
  }
  Lanes candidates{};
  for (std::size_t r = 0; r < kLanes; ++r) {
    if (r == 0 || counts[r] != counts[r - 1]) {  // usually equal
      procedure_.run(counts[r]);
      if (withBands) candidates = procedure_.candidates(counts[r]);
    }
    corrections_[r] = laneOf(procedure_.largest, r);
    if (!withBands) continue;
    bands_[r] = bandOf(corrections_[r], static_cast<std::uint32_t>(laneOf(candidates, r)),
                       [&](std::size_t place) { return laneOf(procedure_.difference[place], r); });
  }
}

ToneCorrection toneCorrection(const AQ_Spectrum& spectrum, const AQ_MaskRow* masks) {
  const CountedLevels record(spectrum, masks);
  const std::size_t count = toneBandsOf(record);
  ToneProcedure<double> procedure;
  for (std::size_t i = 0; i < count; ++i) procedure.level[i] = record.level(bandAt(i));
  procedure.run(count);
  ToneCorrection result;
  result.correction = procedure.largest;
  result.band = bandOf(result.correction, static_cast<std::uint32_t>(procedure.candidates(count)),
                       [&](std::size_t place) { return procedure.difference[place]; });
  result.lastBand = static_cast<std::int16_t>(kFirstToneBand - 1 + static_cast<int>(count));
  result.rows.reserve(count);
  for (std::size_t i = 0; i < count; ++i) result.rows.push_back(stepAt(procedure, i, count));
  return result;
}

}  // namespace aq
