#pragma once

#include <cstdint>
#include <memory>

#include "aq/core/export.h"
#include "aq/spectral/spectral_time_history.h"

namespace aq {

/// An inclusive range of record numbers.
struct RecordRange {
  std::int16_t first = 0;
  std::int16_t last = 0;
};

/// The range of records with stamps from `from` to `to`, inclusive, in seconds after midnight.
/// Times more than half a day from the first record are taken to be on the other side of midnight.
/// Throws `InvalidArgument` if there is no such record.
[[nodiscard]] AQ_API RecordRange recordsBetween(const AQ_SpectralTimeHistory& history, double from,
                                                double to);

/// The records of a range, as a history with the same settings. Stamps do not change; the start
/// time moves by the time from the first stamp of the history to the first stamp of the range.
/// `fromOne` numbers the records from 1, as a masking map requires, and keeps gaps. Spectra are
/// shared with the history. Throws `InvalidArgument` if there is no record in the range, `Overflow`
/// if a number would exceed 32767.
[[nodiscard]] AQ_API std::shared_ptr<AQ_SpectralTimeHistory> cutHistory(
    AQ_SpectralTimeHistory& history, const RecordRange& range, bool fromOne);

}  // namespace aq
