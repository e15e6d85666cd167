#include "tools/aqdata/event.h"

#include <fmt/format.h>

#include <algorithm>
#include <optional>

#include "tools/aqdata/measurement.h"
#include "tools/aqdata/noise.h"
#include "tools/aqdata/text.h"

namespace aqdata {
namespace {

std::string limitsText(const Json& event) {
  const Json& first = event["first"];
  const Json& last = event["last"];
  if (!first.is_null() && !last.is_null()) {
    return fmt::format("10 dB-down limits: record {} to record {}", first.dump(), last.dump());
  }
  const Json& one = first.is_null() ? last : first;
  const char* const open = one.is_null() ? "begin and end" : first.is_null() ? "begin" : "end";
  return fmt::format(
      "10 dB-down limits: {}; the records {} above the limit, so the EPNL is a lower bound",
      one.is_null() ? "none" : fmt::format("only record {}", one.dump()), open);
}

}  // namespace

Json eventJson(const std::optional<aq::NoiseEvent>& found, int firstRecord) {
  if (!found) return nullptr;
  const aq::NoiseEvent& event = *found;
  const auto record = [&](std::size_t place) { return firstRecord + static_cast<int>(place); };
  const auto limit = [&](const std::optional<std::size_t>& place) -> Json {
    return place ? Json(record(*place)) : Json();
  };
  Json peaks = Json::array();
  for (const std::size_t place : event.secondPeaks) peaks.push_back(record(place));
  return {{"EPNL", event.epnl},
          {"EPNL_with_band_sharing", event.epnlWithBandSharing},
          {"PNLTM", event.pnltm},
          {"band_sharing", event.bandSharing},
          {"duration_correction", event.duration},
          {"first", limit(event.first)},
          {"maximum", record(event.maximum)},
          {"last", limit(event.last)},
          {"second_peaks", std::move(peaks)}};
}

std::vector<std::string> missingWords(const aq::HistoryMetrics& metrics,
                                      const aq::AQ_MaskMap* map) {
  std::vector<std::string> words;
  const auto add = [&](const auto& isOne, std::string_view before, std::string_view after) {
    std::vector<int> found;
    for (const aq::RecordMetrics& record : metrics.records) {
      if (isOne(record)) found.push_back(record.record);
    }
    if (found.empty()) return;
    words.push_back(fmt::format("{}{}{}: {}", before, counted(found.size(), "record"), after,
                                recordsText(found)));
  };
  const std::string_view unused = map == nullptr ? "not valid" : "masked or not valid";
  add([&](const auto& record) { return map != nullptr && !map->contains(record.record); }, "",
      " without a row in the map, treated as not masked");
  add([](const auto& record) { return !record.has(aq::AQ_METRIC_OA); }, "no metrics for ",
      fmt::format(" whose levels are all {}", unused));
  add(
      [](const auto& record) {
        return record.has(aq::AQ_METRIC_OA) && !record.has(aq::AQ_METRIC_PNL);
      },
      "no PNL, PNLT or tone for ",
      fmt::format(" whose levels in bands 17 to 40 are all {}", unused));
  return words;
}

std::vector<std::string> eventWords(const aq::HistoryMetrics& metrics, const Json& event,
                                    const aq::AQ_SpectralTimeHistory& history,
                                    const aq::AQ_MaskMap* map) {
  if (event.is_null()) return {"no event: no record has a PNLT"};
  const aq::NoiseEvent& found = *metrics.event;
  const auto number = event["maximum"].get<std::int16_t>();
  const auto at = std::find_if(metrics.records.begin(), metrics.records.end(),
                               [&](const auto& record) { return record.record == number; });
  const aq::AQ_Spectrum& spectrum = *history.spectrum(number);
  const aq::ToneCorrection tone = aq::toneCorrection(spectrum, rowOf(map, number));
  std::vector<std::string> words{
      fmt::format("EPNL {:.2f} EPNdB, with band sharing {:.2f} EPNdB ({:+.2f} dB)", found.epnl,
                  found.epnlWithBandSharing, found.bandSharing),
      fmt::format("PNLTM {:.2f} TPNdB at record {}, {}; duration correction {:+.2f} dB",
                  found.pnltm, number, timeText(spectrum.timeValue()), found.duration),
      limitsText(event),
      fmt::format("at the maximum: {} of 24 bands count; {}", at->perceivedBands, toneText(tone))};
  if (at->has(aq::AQ_METRIC_LGB)) {
    words.back() +=
        fmt::format("; {}", lastGoodBandText(static_cast<int>(at->value(aq::AQ_METRIC_LGB))));
  }
  std::vector<int> peaks;
  for (const Json& peak : event["second_peaks"]) peaks.push_back(peak.get<int>());
  words.push_back(peaks.empty()
                      ? "no second peak within 2 dB"
                      : fmt::format("second {} within 2 dB: {}",
                                    peaks.size() == 1 ? "peak" : "peaks", recordsText(peaks)));
  return words;
}

}  // namespace aqdata
