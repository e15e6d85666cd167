#pragma once

#include <optional>

#include "aq/core/export.h"
#include "aq/masking/mask_map.h"
#include "aq/noise/noise_event.h"
#include "aq/spectral/spectral_time_history.h"

namespace aq {

/// Computes the ten metrics of every record into its `Metric()`, in single precision, and lists
/// them in `Metrics()`. Unsets a metric without a value: weighted and overall levels when no level
/// of the record counts, and PNL, PNLT and tone correction when none in bands 17 to 40 counts.
/// Without a map, keeps the last good band. `INTEG` says which part a record plays in the event; a
/// record lasts until the stamp of the next one.
///
/// A row of the map belongs to the record with the same number; a record without a row is not
/// masked. Never changes map or rows. Returns the event, with indices counted from the lowest
/// record number, from unrounded values; nothing if no record has a PNLT.
///
/// Throws `InvalidValue` when a stamp equals that of the previous record, `ObjectNotSet` for a null
/// spectrum or row, and leaves the history unchanged.
AQ_API std::optional<NoiseEvent> setMetrics(AQ_SpectralTimeHistory& history,
                                            const AQ_MaskMap* map = nullptr);

}  // namespace aq
