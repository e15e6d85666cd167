#pragma once

#include <cstdint>
#include <memory>

#include "aq/core/export.h"
#include "aq/masking/mask_map.h"

namespace aq {

/// The rows of records `first` to `last`, renumbered from 1. Rows are shared with the map. Throws
/// `InvalidArgument` if a row is missing.
[[nodiscard]] AQ_API std::shared_ptr<AQ_MaskMap> cutMap(const AQ_MaskMap& map, std::int16_t first,
                                                        std::int16_t last);

/// The rows of two maps, each numbered from 1, with `gap` unmasked rows in between. Rows are shared
/// with the maps. Throws `InvalidArgument` if `before` has no rows, or if a row is missing or has
/// bands other than those of the first row, and `Overflow` for more than 32767 rows.
[[nodiscard]] AQ_API std::shared_ptr<AQ_MaskMap> joinMaps(const AQ_MaskMap& before,
                                                          const AQ_MaskMap& after,
                                                          std::int32_t gap);

}  // namespace aq
