#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "aq/sdf/recording.h"

namespace aq {

/// The trace that the levels come from, and the conversion of its values to levels.
struct RecordingTrace {
  const sdf::TraceSet* set;
  std::size_t trace;
  bool narrow;                 ///< bands are sums of narrow bands
  const sdf::Record* channel;  ///< the first channel that it was measured with; may be null
  std::string unit;            ///< label of the unit
  bool pressure;
  double gain;        ///< factor for the values; for power data, factor for the power
  double offset = 0;  ///< value = offset + scale * stored integer
  double scale = 1;   ///< see `offset`
};

/// The data header that the levels come from: the first one with one-third octaves, otherwise the
/// first one with auto power. Fails if there is neither.
[[nodiscard]] const sdf::TraceSet& levelsOf(const sdf::Recording& recording);

/// The trace numbered `channel`, from 1, in the data header that the levels come from. Fails if
/// there is no such trace, if its data cannot be converted to levels, if its unit is missing, or if
/// a conversion factor is 0.
[[nodiscard]] RecordingTrace traceOf(const sdf::Recording& recording, std::int16_t channel);

/// How many of a trace's `points` are valid.
[[nodiscard]] std::size_t validPoints(const sdf::Recording& recording, const sdf::TraceSet& set,
                                      std::size_t points);

/// Whether the data are octave bands, so that no narrow bands need to be summed.
[[nodiscard]] bool isOctaves(const sdf::TraceSet& set);

/// Reasons for caution in using the data, one line each: invalid data, frequency weighting,
/// overload, window correction.
[[nodiscard]] std::vector<std::string> marksOf(const RecordingTrace& trace);

/// Notes for users of the levels, one line each: channel, unit, any calibration, and the lines of
/// `marksOf`.
[[nodiscard]] std::vector<std::string> notesOf(const RecordingTrace& trace, double calibration);

}  // namespace aq
