#include "aq/noise/tone_correction.h"

#include <cstddef>

#include "aq/noise/tone_procedure.h"

namespace aq {
namespace {

ToneStep stepAt(const ToneProcedure& procedure, std::size_t i) {
  ToneStep step;
  step.band = static_cast<std::int16_t>(kFirstToneBand + static_cast<int>(i));
  step.level = procedure.level[i];
  if (i > 0) step.slope = procedure.slope[i];
  step.slopeMarked = procedure.slopeMarked[i];
  step.levelMarked = procedure.levelMarked[i];
  step.adjusted = procedure.adjusted[i];
  if (procedure.count > 1) step.adjustedSlope = procedure.adjustedSlope[i];
  if (i + 1 < procedure.count) step.meanSlope = procedure.meanSlope[i];
  step.background = procedure.background[i];
  step.difference = procedure.difference[i];
  step.correction = procedure.correction[i];
  return step;
}

}  // namespace

ToneCorrection toneCorrection(const AQ_Spectrum& spectrum, const AQ_MaskRow* masks) {
  const ToneProcedure procedure{CountedLevels(spectrum, masks)};
  ToneCorrection result;
  result.correction = procedure.largest;
  result.band = procedure.largestBand;
  result.lastBand =
      static_cast<std::int16_t>(kFirstToneBand - 1 + static_cast<int>(procedure.count));
  result.rows.reserve(procedure.count);
  for (std::size_t i = 0; i < procedure.count; ++i) result.rows.push_back(stepAt(procedure, i));
  return result;
}

}  // namespace aq
