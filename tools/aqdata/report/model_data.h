#pragma once

#include <aq/aq.h>

#include <cstdint>
#include <limits>
#include <string>
#include <vector>

#include "tools/aqdata/session.h"

// What the models hold, as a page has it. Lengths are in the unit of the file.
namespace aqdata::report {

inline constexpr double kNoValue = std::numeric_limits<double>::quiet_NaN();

// To what the numbers of a page are rounded.
inline constexpr double kHundredth = 0.01;  // of a decibel, a degree
inline constexpr double kTimeStep = 1e-4;   // in seconds
inline constexpr double kLengthStep = 1e-3;

/// Appends the levels of bands `low` to `high`; no value for 9999 and where a band has none.
void appendLevels(const aq::AQ_Spectrum& spectrum, std::int16_t low, std::int16_t high,
                  std::vector<double>& levels);

/// Appends a number a band: 1 for masked, 2 more for adjusted; 0 without a row.
void appendMasks(const aq::AQ_MaskRow* row, std::int16_t low, std::int16_t high,
                 std::string& masks);

/// Appends the levels without tones of bands 19 to 40.
void appendBackground(const aq::ToneCorrection& tone, std::vector<double>& levels);

[[nodiscard]] Json positionsJson(const aq::AQ_PositionTimeHistory& positions);
[[nodiscard]] Json geometryJson(const aq::AQ_GeometryTimeHistory& geometry);

}  // namespace aqdata::report
