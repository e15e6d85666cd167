#pragma once

#include <aq/aq.h>

#include <optional>
#include <string>
#include <vector>

#include "tools/aqdata/session.h"

namespace aqdata {

/// The event of a history as JSON, with these keys and `second_peaks`; null without an event.
/// Records are given by number.
inline constexpr const char* kEventKeys[] = {"EPNL",
                                             "EPNL_with_band_sharing",
                                             "PNLTM",
                                             "band_sharing",
                                             "duration_correction",
                                             "first",
                                             "maximum",
                                             "last"};
[[nodiscard]] Json eventJson(const std::optional<aq::NoiseEvent>& found, int firstRecord);

/// The event in words, one line per entry. `event` is what `eventJson` returned for
/// `metrics.event`.
[[nodiscard]] std::vector<std::string> eventWords(const aq::HistoryMetrics& metrics,
                                                  const Json& event,
                                                  const aq::AQ_SpectralTimeHistory& history,
                                                  const aq::AQ_MaskMap* map);

/// Says in words which records lack a row in the map, and which lack a metric and why.
[[nodiscard]] std::vector<std::string> missingWords(const aq::HistoryMetrics& metrics,
                                                    const aq::AQ_MaskMap* map);

}  // namespace aqdata
