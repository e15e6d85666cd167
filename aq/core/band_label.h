#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "aq/core/export.h"

namespace aq {

/// The column heading of a one-third-octave band: its number and its nominal centre frequency
/// (IEC 61260-1), as in "B17/50Hz". Throws `InvalidArgument` outside bands 2 to 50.
[[nodiscard]] AQ_API std::string_view bandLabel(std::int16_t band);

/// Appends the labels of bands `low` to `high`, separated by ",". Appends the label of `high` even
/// if the range is empty. Throws in the same cases as `bandLabel`.
AQ_API void appendBandLabels(std::string& line, std::int16_t low, std::int16_t high);

}  // namespace aq
