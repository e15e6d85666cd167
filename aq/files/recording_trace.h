#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "aq/sdf/recording.h"

namespace aq {

/// The trace of a recording that its levels come from, and what turns its values into levels.
struct RecordingTrace {
  const sdf::TraceSet* set;
  std::size_t trace;
  bool narrow;                 ///< bands are sums of narrow ones
  const sdf::Record* channel;  ///< the first that it was measured with; may be none
  std::string unit;            ///< its label
  bool pressure;
  double gain;        ///< of values, and of values that are power
  double offset = 0;  ///< of stored integers, and
  double scale = 1;   ///< what they are multiplied by
};

/// The header that levels come from: the first of third octaves, otherwise the first of auto power.
/// Fails when there is neither.
[[nodiscard]] const sdf::TraceSet& levelsOf(const sdf::Recording& recording);

/// Trace `channel`, counted from 1, of the header that levels come from. Fails where its data is of
/// a form that is not known, or its unit or correction is missing.
[[nodiscard]] RecordingTrace traceOf(const sdf::Recording& recording, std::int16_t channel);

/// How many points of a trace of so many are valid.
[[nodiscard]] std::size_t validPoints(const sdf::Recording& recording, const sdf::TraceSet& set,
                                      std::size_t points);

/// Whether the data are one-third octaves already.
[[nodiscard]] bool isOctaves(const sdf::TraceSet& set);

/// What the analyzer says against its data, a line each: weighting, overload, not valid,
/// correction.
[[nodiscard]] std::vector<std::string> marksOf(const RecordingTrace& trace);

/// What somebody who uses the levels should know, a line each: channel, unit, calibration and
/// marks.
[[nodiscard]] std::vector<std::string> notesOf(const RecordingTrace& trace, double calibration);

}  // namespace aq
