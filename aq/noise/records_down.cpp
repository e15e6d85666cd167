#include "aq/noise/records_down.h"

#include <algorithm>
#include <iterator>

#include "aq/core/error.h"
#include "aq/noise/history_metrics.h"

namespace aq {

RecordRange recordsDown(const AQ_SpectralTimeHistory& history, const AQ_MaskMap* map,
                        double decibels) {
  constexpr double kDecimals = 1e-9;  // dB, as for event limits
  if (!(decibels > 0)) {
    throw Error(ErrorCode::InvalidArgument, "expected a difference above 0 dB");
  }
  const HistoryMetrics metrics = historyMetrics(history, map);
  if (!metrics.event) throw Error(ErrorCode::InvalidArgument, "no record has a PNLT");
  const double limit = metrics.event->pnltm - decibels - kDecimals;
  const auto isAbove = [&](const RecordMetrics& record) {
    return record.value(AQ_METRIC_PNLT) >= limit;  // false for NaN
  };
  const auto& records = metrics.records;
  auto first = std::find_if(records.begin(), records.end(), isAbove);
  auto last = std::find_if(records.rbegin(), records.rend(), isAbove).base();  // one past it
  if (first != records.begin()) --first;
  if (last == records.end()) --last;
  return {first->record, last->record};
}

}  // namespace aq
