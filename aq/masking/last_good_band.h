#pragma once

#include <cstdint>

#include "aq/core/export.h"
#include "aq/masking/mask_row.h"

namespace aq {

/// The band below the first masked one from band 29 up; 9999 when bands 28 and 29 are both masked,
/// 0 when no band from 29 to the row's highest is masked. Creates a default mask in each examined
/// band that has none.
[[nodiscard]] AQ_API std::int16_t lastGoodBand(AQ_MaskRow& row);

/// The last good band, found without changing the row: a missing band counts as not masked.
[[nodiscard]] AQ_API std::int16_t lastGoodBand(const AQ_MaskRow& row);

}  // namespace aq
