#include "aq/noise/history_metrics.h"

#include <algorithm>
#include <limits>
#include <string>

#include "aq/core/error.h"
#include "aq/detail/pointers.h"
#include "aq/masking/last_good_band.h"
#include "aq/noise/noy_table.h"
#include "aq/noise/record_levels.h"
#include "aq/noise/tone_procedure.h"

namespace aq {
namespace {

constexpr double kNoValue = std::numeric_limits<double>::quiet_NaN();
constexpr double kRecordSeconds = 0.5;  // of a record without a next one

const AQ_MaskRow* rowOf(const AQ_MaskMap* map, std::int16_t record) {
  if (map == nullptr || !map->contains(record)) return nullptr;
  return &orThrow(map->heldRow(record));
}

void findPerceivedNoise(const CountedLevels& levels, RecordMetrics& metrics) {
  const auto perceived = levels.levelsFrom<kNoyBands.size()>(kFirstNoyBand);
  metrics.perceivedBands = static_cast<std::int16_t>(std::count_if(
      perceived.begin(), perceived.end(), [](double level) { return !std::isnan(level); }));
  if (metrics.perceivedBands == 0) return;
  const double pnl = perceivedNoiseLevelOf(levels);
  if (!std::isfinite(pnl)) {
    throw Error(ErrorCode::Overflow, "record " + std::to_string(metrics.record) +
                                         ": the levels are too high for a perceived noise level");
  }
  const ToneProcedure tone(levels);
  metrics.value(AQ_METRIC_PNL, pnl);
  metrics.value(AQ_METRIC_PNLT, pnl + tone.largest);
  metrics.value(AQ_METRIC_TONECOR, tone.largest);
  metrics.value(AQ_METRIC_TONEBND, tone.largestBand);
}

RecordMetrics metricsOf(std::int16_t record, const CountedLevels& levels) {
  RecordMetrics metrics;
  metrics.record = record;
  metrics.values.fill(kNoValue);
  const WeightedLevels weighted = weightedLevelsOf(levels);
  std::copy(weighted.begin(), weighted.end(), metrics.values.begin());
  findPerceivedNoise(levels, metrics);
  metrics.value(AQ_METRIC_INTEG, 0);
  return metrics;
}

/// How long each record lasts, from the seconds of the day of their stamps: until the next stamp,
/// over midnight too; the last one as long as the one before it.
std::vector<double> durationsOf(const std::vector<RecordMetrics>& records,
                                const std::vector<double>& stamps) {
  std::vector<double> durations(stamps.size(), kRecordSeconds);
  for (std::size_t i = 0; i + 1 < stamps.size(); ++i) {
    const double step = std::fmod(stamps[i + 1] - stamps[i], kSecondsPerDay);
    durations[i] = step < 0 ? step + kSecondsPerDay : step;
    if (durations[i] > 0) continue;
    throw Error(ErrorCode::InvalidValue, "records " + std::to_string(records[i].record) + " and " +
                                             std::to_string(records[i + 1].record) +
                                             " have the same time");
  }
  if (durations.size() > 1) durations.back() = *(durations.end() - 2);
  return durations;
}

/// Place 0 is the lowest record number; a number without a record is a place without a PNLT.
std::optional<NoiseEvent> eventOf(const std::vector<RecordMetrics>& records,
                                  const std::vector<double>& durations) {
  const auto hasPnlt = [](const RecordMetrics& record) { return record.has(AQ_METRIC_PNLT); };
  if (std::none_of(records.begin(), records.end(), hasPnlt)) return std::nullopt;
  const int low = records.front().record;
  const auto places = static_cast<std::size_t>(records.back().record - low) + 1;
  std::vector<double> pnlt(places, kNoValue);
  std::vector<double> corrections(places, kNoValue);
  std::vector<double> seconds(places, kRecordSeconds);
  for (std::size_t i = 0; i < records.size(); ++i) {
    const auto place = static_cast<std::size_t>(records[i].record - low);
    pnlt[place] = records[i].value(AQ_METRIC_PNLT);
    corrections[place] = records[i].value(AQ_METRIC_TONECOR);
    seconds[place] = durations[i];
  }
  return noiseEvent(pnlt, seconds, corrections);
}

void flagRecords(const NoiseEvent& event, std::vector<RecordMetrics>& records) {
  for (RecordMetrics& record : records) {
    const auto place = static_cast<std::size_t>(record.record - records.front().record);
    const auto& peaks = event.secondPeaks;
    std::int32_t flags = 0;
    if (place == event.maximum) flags |= AQ_INTEG_MAX;
    if (place == event.first) flags |= AQ_INTEG_FST;
    if (place == event.last) flags |= AQ_INTEG_LST;
    if (std::binary_search(peaks.begin(), peaks.end(), place)) flags |= AQ_INTEG_2ND;
    record.value(AQ_METRIC_INTEG, flags);
  }
}

}  // namespace

HistoryMetrics historyMetrics(const AQ_SpectralTimeHistory& history, const AQ_MaskMap* map) {
  HistoryMetrics result;
  std::vector<double> stamps;
  CountedLevels levels;
  for (const auto& [number, object] : history) {
    const AQ_Spectrum& spectrum = orThrow(object);
    const auto record = static_cast<std::int16_t>(number);
    const AQ_MaskRow* const row = rowOf(map, record);
    levels.take(spectrum, row);
    result.records.push_back(metricsOf(record, levels));
    if (map != nullptr) {
      result.records.back().value(AQ_METRIC_LGB, row == nullptr ? 0 : lastGoodBand(*row));
    }
    stamps.push_back(spectrum.timeValue().TODseconds());
  }
  if (result.records.empty()) return result;
  result.event = eventOf(result.records, durationsOf(result.records, stamps));
  if (result.event) flagRecords(*result.event, result.records);
  return result;
}

}  // namespace aq
