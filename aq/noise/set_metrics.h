#pragma once

#include <optional>

#include "aq/core/export.h"
#include "aq/masking/mask_map.h"
#include "aq/noise/noise_event.h"
#include "aq/spectral/spectral_time_history.h"

namespace aq {

/// Computes the ten metrics of every record into its `Metric()`, in single precision as that holds
/// them, and lists them in `Metrics()`. What has no value is unset: levels of a record without a
/// level that counts, and PNL, PNLT and tone correction of one without any in bands 17 to 40.
/// Without a map the last good band stays as it is. `INTEG` says which part a record plays in the
/// event; a record lasts until the stamp of the next one.
///
/// A row of the map belongs to the record of its number, and a record without one is not masked.
/// Map and rows stay unchanged. Gives the event, its places counted from the lowest record number,
/// from unrounded values; nothing when no record has a PNLT.
///
/// Throws `InvalidValue` when a stamp is that of the record before, `ObjectNotSet` for an empty
/// spectrum or row. The history is then as it was.
AQ_API std::optional<NoiseEvent> setMetrics(AQ_SpectralTimeHistory& history,
                                            const AQ_MaskMap* map = nullptr);

}  // namespace aq
