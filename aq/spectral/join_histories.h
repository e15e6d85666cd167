#pragma once

#include <cstdint>
#include <memory>

#include "aq/core/export.h"
#include "aq/spectral/spectral_time_history.h"

namespace aq {

/// How many records are missing between the last one of `before` and the first one of `after`, by
/// their stamps; over midnight too. Throws `InvalidArgument` when they are not two pieces of one
/// measurement: other bands, averaging, stamp type, record length or reference, a piece without
/// records, an overlap, or a gap of no whole number of records.
[[nodiscard]] AQ_API std::int32_t recordsMissing(AQ_SpectralTimeHistory& before,
                                                 AQ_SpectralTimeHistory& after);

/// Two pieces of one measurement as one history: the numbers of `before` go on, stamps and relative
/// times stay. `fill` gives the records that are missing between them levels of 9999, not valid;
/// without it they may not lack any. Spectra are shared with the pieces. Throws as
/// `recordsMissing`, `InvalidArgument` for a gap that is not to be filled, `Overflow` for more
/// records than there are numbers.
[[nodiscard]] AQ_API std::shared_ptr<AQ_SpectralTimeHistory> joinHistories(
    AQ_SpectralTimeHistory& before, AQ_SpectralTimeHistory& after, bool fill);

}  // namespace aq
