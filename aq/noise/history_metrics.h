#pragma once

#include <array>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <vector>

#include "aq/core/enumerations.h"
#include "aq/core/export.h"
#include "aq/masking/mask_map.h"
#include "aq/noise/noise_event.h"
#include "aq/spectral/spectral_time_history.h"

namespace aq {

/// The metrics of one record as computed, in double precision. NaN means no value.
struct RecordMetrics {
  std::int16_t record = 0;
  std::int16_t perceivedBands = 0;  ///< how many of bands 17 to 40 have a level that counts
  double seconds = 0;               ///< its time stamp, seconds after midnight
  std::array<double, AQ_METRIC_INTEG>
      values{};  ///< by type, from `AQ_METRIC_AWT` up; dB, PNdB, TPNdB, band numbers or flags

  [[nodiscard]] double value(AQ_METRIC_TYPE metric) const { return values[at(metric)]; }
  void value(AQ_METRIC_TYPE metric, double number) { values[at(metric)] = number; }
  [[nodiscard]] bool has(AQ_METRIC_TYPE metric) const { return !std::isnan(value(metric)); }

 private:
  static std::size_t at(AQ_METRIC_TYPE metric) {
    return static_cast<std::size_t>(metric - AQ_METRIC_AWT);
  }
};

/// The metrics of a history.
struct HistoryMetrics {
  std::vector<RecordMetrics> records;  ///< in order of record number
  /// The event's indices count from the lowest record number. Empty if no record has a PNLT.
  std::optional<NoiseEvent> event;
};

/// The metrics that `setMetrics` stores, unrounded. Never changes the history. Throws as
/// `setMetrics` does.
[[nodiscard]] AQ_API HistoryMetrics historyMetrics(const AQ_SpectralTimeHistory& history,
                                                   const AQ_MaskMap* map = nullptr);

/// The event of a history.
struct HistoryEvent {
  std::size_t records = 0;
  std::int16_t firstRecord = 0;     ///< the number of the record with index 0 in the event
  std::optional<NoiseEvent> event;  ///< empty if no record has a PNLT
};

/// Computes only the event of `historyMetrics`, in less time: records that cannot belong to the
/// event get no tone correction. Throws in the same cases as `setMetrics`.
[[nodiscard]] AQ_API HistoryEvent historyEvent(const AQ_SpectralTimeHistory& history,
                                               const AQ_MaskMap* map = nullptr);

}  // namespace aq
