#pragma once

#include <cstdint>
#include <memory>

#include "aq/core/export.h"
#include "aq/spectral/spectral_time_history.h"

namespace aq {

/// How many records are missing between the last one of `before` and the first one of `after`,
/// judging by their stamps; midnight may lie in between. Throws `InvalidArgument` unless they are
/// two pieces of one measurement: both have records, their stamps ascend overall, they agree in
/// bands, averaging method, stamp type, record length and reference, they do not overlap, and the
/// gap is a whole number of records. Throws `Overflow` for a gap of more than 32767 records.
[[nodiscard]] AQ_API std::int32_t recordsMissing(AQ_SpectralTimeHistory& before,
                                                 AQ_SpectralTimeHistory& after);

/// Joins two pieces of one measurement: record numbers continue from `before`; stamps and relative
/// times do not change. `fill` fills a gap with records whose levels are 9999 (not valid). Spectra
/// are shared with the pieces; `Metrics()` lists nothing. Throws in the same cases as
/// `recordsMissing`, `InvalidArgument` for a gap without `fill`, and `Overflow` if record numbers
/// exceed 16 bits.
[[nodiscard]] AQ_API std::shared_ptr<AQ_SpectralTimeHistory> joinHistories(
    AQ_SpectralTimeHistory& before, AQ_SpectralTimeHistory& after, bool fill);

}  // namespace aq
