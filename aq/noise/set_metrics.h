#pragma once

#include <optional>

#include "aq/core/export.h"
#include "aq/masking/mask_map.h"
#include "aq/noise/noise_event.h"
#include "aq/spectral/spectral_time_history.h"

namespace aq {

/// Stores the ten metrics of every record in its `Metric()`, in single precision, and lists them in
/// `Metrics()`. Unsets a metric without a value: weighted levels if no level in bands 10 to 43
/// counts, the overall level if none at all counts, and PNL, PNLT, tone correction and its band if
/// none in bands 17 to 40 counts. Without a map, keeps the last good band. `INTEG` is the role of a
/// record in the event; a record lasts until the stamp of the next one, the last record as long as
/// the one before it, and a single record 0.5 s.
///
/// A row of the map applies to the record with the same number; a record without a row is not
/// masked. Does not change the map. Returns the event, computed from unrounded values, with
/// indices counted from the lowest record number; nothing if no record has a PNLT.
///
/// Throws `InvalidValue` if a stamp equals that of the previous record, `Overflow` for a level that
/// is too high for a metric, and `ObjectNotSet` for a null spectrum or row; the history is then
/// unchanged.
AQ_API std::optional<NoiseEvent> setMetrics(AQ_SpectralTimeHistory& history,
                                            const AQ_MaskMap* map = nullptr);

}  // namespace aq
