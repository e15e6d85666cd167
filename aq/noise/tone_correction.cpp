#include "aq/noise/tone_correction.h"

#include <array>
#include <cmath>
#include <cstddef>

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
  step.levelMarked = procedure.isTakenOut[i] != 0;
  step.adjusted = procedure.adjusted[i];
  if (count > 1) step.adjustedSlope = procedure.adjustedSlope[i];
  if (i + 1 < count) step.meanSlope = procedure.meanSlope[i];
  step.background = procedure.background[i];
  step.difference = procedure.difference[i];
  step.correction = procedure.correction[i];
  return step;
}

std::size_t toneBandsOf(const CountedLevels& record) {
  return static_cast<std::size_t>(record.countRun(kFirstToneBand, kLastToneBand));
}

std::int32_t bandAt(std::size_t place) { return kFirstToneBand + static_cast<std::int32_t>(place); }

using Counts = std::array<std::size_t, kLanes>;

/// The levels by band and record, as many of each record as `counts` says.
std::array<std::array<double, kLanes>, kToneBands> levelsOf(
    const std::array<CountedLevels, kLanes>& records, const Counts& counts) {
  std::array<std::array<double, kLanes>, kToneBands> levels{};
  for (std::size_t r = 0; r < kLanes; ++r) {
    const CountedLevels& record = records[r];
    if (counts[r] == 0) continue;
    std::size_t i = 0;
    if (record.isCoded()) {
      for (const LevelCode code : record.codes(kFirstToneBand, bandAt(counts[r] - 1))) {
        levels[i++][r] = levelOf(code);
      }
    }
    for (; i < counts[r]; ++i) levels[i][r] = record.level(bandAt(i));
  }
  return levels;
}

}  // namespace

Tones tonesOf(const std::array<CountedLevels, kLanes>& records) {
  Counts counts;
  for (std::size_t r = 0; r < kLanes; ++r) counts[r] = toneBandsOf(records[r]);
  ToneProcedure<Lanes> procedure;
  const auto levels = levelsOf(records, counts);
  for (std::size_t i = 0; i < kToneBands; ++i) procedure.level[i] = lanesAt(levels[i].data());
  Tones tones;
  for (std::size_t r = 0; r < kLanes; ++r) {
    if (r == 0 || counts[r] != counts[r - 1]) procedure.run(counts[r]);  // usually equal
    tones.corrections[r] = laneOf(procedure.largest, r);
    tones.bands[r] = laneOf(procedure.largestBand, r);
  }
  return tones;
}

ToneCorrection toneCorrection(const AQ_Spectrum& spectrum, const AQ_MaskRow* masks) {
  const CountedLevels record(spectrum, masks);
  const std::size_t count = toneBandsOf(record);
  ToneProcedure<double> procedure;
  for (std::size_t i = 0; i < count; ++i) procedure.level[i] = record.level(bandAt(i));
  procedure.run(count);
  ToneCorrection result;
  result.correction = procedure.largest;
  result.band = static_cast<std::int16_t>(procedure.largestBand);
  result.lastBand = static_cast<std::int16_t>(kFirstToneBand - 1 + static_cast<int>(count));
  result.rows.reserve(count);
  for (std::size_t i = 0; i < count; ++i) result.rows.push_back(stepAt(procedure, i, count));
  return result;
}

}  // namespace aq
