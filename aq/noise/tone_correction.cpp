#include "aq/noise/tone_correction.h"

#include <cstddef>

#include "aq/noise/tone_procedure.h"

namespace aq {
namespace {

/// Reads the only record of a block.
ToneStep stepAt(const ToneProcedure& procedure, std::size_t i, std::size_t count) {
  ToneStep step;
  step.band = static_cast<std::int16_t>(kFirstToneBand + static_cast<int>(i));
  step.level = procedure.level[i][0];
  if (i > 0) step.slope = procedure.slope[i][0];
  step.slopeMarked = procedure.slopeMarked(i, 0);
  step.levelMarked = procedure.levelMark[i][0] != 0;
  step.adjusted = procedure.adjusted[i][0];
  if (count > 1) step.adjustedSlope = procedure.adjustedSlope[i][0];
  if (i + 1 < count) step.meanSlope = procedure.meanSlope[i][0];
  step.background = procedure.background[i][0];
  step.difference = procedure.difference[i][0];
  step.correction = procedure.correction[i][0];
  return step;
}

}  // namespace

ToneCorrection toneCorrection(const AQ_Spectrum& spectrum, const AQ_MaskRow* masks) {
  const ToneProcedure procedure{RecordBlock(spectrum, masks)};
  const std::size_t count = procedure.count(0);
  ToneCorrection result;
  result.correction = procedure.largest[0];
  result.band = static_cast<std::int16_t>(procedure.largestBand[0]);
  result.lastBand = static_cast<std::int16_t>(kFirstToneBand - 1 + static_cast<int>(count));
  result.rows.reserve(count);
  for (std::size_t i = 0; i < count; ++i) result.rows.push_back(stepAt(procedure, i, count));
  return result;
}

}  // namespace aq
