#pragma once

#include <cstdint>
#include <memory>

#include "aq/core/export.h"
#include "aq/spectral/spectral_time_history.h"

namespace aq {

/// Records by their numbers, both ends included.
struct RecordRange {
  std::int16_t first = 0;
  std::int16_t last = 0;
};

/// The records whose stamps are from `from` to `to`, both included, in seconds of the day; of times
/// more than half a day from the first record, those on the other side of midnight are meant. All
/// records between the first and the last one are part of it. Throws `InvalidArgument` when no
/// record is.
[[nodiscard]] AQ_API RecordRange recordsBetween(const AQ_SpectralTimeHistory& history, double from,
                                                double to);

/// The records of a range, with what the history says of all of them. They keep their stamps; the
/// start time moves by as much as the first stamp does. `fromOne` numbers them from 1, as those of
/// a history with a masking map have to be, and keeps gaps. Spectra are shared with the history.
/// Throws `InvalidArgument` when it has no record there.
[[nodiscard]] AQ_API std::shared_ptr<AQ_SpectralTimeHistory> cutHistory(
    AQ_SpectralTimeHistory& history, const RecordRange& range, bool fromOne);

}  // namespace aq
