#pragma once

#include <aq/aq.h>

#include <cstdint>
#include <limits>
#include <string>
#include <vector>

#include "tools/aqdata/session.h"

// Levels, masks, positions and geometries in the form that the report page reads. Lengths are in
// the unit of the file.
namespace aqdata::report {

inline constexpr double kNoValue = std::numeric_limits<double>::quiet_NaN();

// The steps in which numbers are packed (see `packed`).
inline constexpr double kHundredth = 0.01;  // of a decibel, a degree or a second
inline constexpr double kTimeStep = 1e-4;   // in seconds
inline constexpr double kLengthStep = 1e-3;

/// Appends the levels of bands `low` to `high`; `kNoValue` for 9999 or a band without a level.
void appendLevels(const aq::AQ_Spectrum& spectrum, std::int16_t low, std::int16_t high,
                  std::vector<double>& levels);

/// Appends one number per band: 1 if masked, plus 2 if adjusted; 0 without a row.
void appendMasks(const aq::AQ_MaskRow* row, std::int16_t low, std::int16_t high,
                 std::string& masks);

/// Appends the levels that bands 19 to 40 would have without tones; `kNoValue` where the tone
/// correction gives none.
void appendBackground(const aq::ToneCorrection& tone, std::vector<double>& levels);

[[nodiscard]] Json positionsJson(const aq::AQ_PositionTimeHistory& positions);
[[nodiscard]] Json geometryJson(const aq::AQ_GeometryTimeHistory& geometry);

}  // namespace aqdata::report
