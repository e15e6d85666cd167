#include "aq/noise/history_metrics.h"

#include <algorithm>
#include <array>
#include <iterator>
#include <limits>
#include <span>
#include <string>
#include <utility>

#include "aq/core/error.h"
#include "aq/detail/pointers.h"
#include "aq/masking/last_good_band.h"
#include "aq/noise/noy_table.h"
#include "aq/noise/record_levels.h"

namespace aq {
namespace {

constexpr double kNoValue = std::numeric_limits<double>::quiet_NaN();
constexpr double kRecordSeconds = 0.5;  // of a single record

const AQ_MaskRow* rowOf(const AQ_MaskMap* map, std::int16_t record) {
  if (map == nullptr || !map->contains(record)) return nullptr;
  return &orThrow(map->heldRow(record));
}

void addLevels(const CountedLevels& levels, RecordMetrics& metrics) {
  const WeightedLevels weighted = weightedLevelsOf(levels);
  std::copy(weighted.begin(), weighted.end(), metrics.values.begin());
}

void addPerceivedNoise(const CountedLevels& levels, RecordMetrics& metrics) {
  metrics.perceivedBands = levels.count(kFirstNoyBand, kLastNoyBand);
  if (metrics.perceivedBands == 0) return;
  const double level = perceivedNoiseLevelOf(levels);
  if (!std::isfinite(level)) {
    throw Error(ErrorCode::Overflow, "record " + std::to_string(metrics.record) +
                                         ": the levels are too high for a perceived noise level");
  }
  metrics.value(AQ_METRIC_PNL, level);
}

void addTone(double correction, double band, RecordMetrics& metrics) {
  if (metrics.perceivedBands == 0) return;
  metrics.value(AQ_METRIC_PNLT, metrics.value(AQ_METRIC_PNL) + correction);
  metrics.value(AQ_METRIC_TONECOR, correction);
  metrics.value(AQ_METRIC_TONEBND, band);
}

/// How long each record lasts, from the seconds of the day of its stamp until the next stamp, also
/// across midnight; the last record lasts as long as the one before it.
std::vector<double> durationsOf(const std::vector<RecordMetrics>& records) {
  std::vector<double> durations(records.size(), kRecordSeconds);
  for (std::size_t i = 0; i + 1 < records.size(); ++i) {
    const double step = std::fmod(records[i + 1].seconds - records[i].seconds, kSecondsPerDay);
    durations[i] = step < 0 ? step + kSecondsPerDay : step;
    if (durations[i] > 0) continue;
    throw Error(ErrorCode::InvalidValue, "records " + std::to_string(records[i].record) + " and " +
                                             std::to_string(records[i + 1].record) +
                                             " have the same time");
  }
  if (durations.size() > 1) durations.back() = *(durations.end() - 2);
  return durations;
}

/// Index 0 is the lowest record number; a number without a record is an index without PNLT.
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

/// The records of a history and their metrics, in the order of their numbers.
struct Series {
  struct Record {
    const AQ_Spectrum* spectrum;
    const AQ_MaskRow* masks;  // may be null
  };
  std::vector<Record> records;
  std::vector<RecordMetrics> metrics;

  using Levels = std::array<CountedLevels, kLanes>;

  /// Calls `compute` for the levels and metrics of the records from `begin` to before `end`, as
  /// many at a time as there are lanes; repeats the last record to fill the lanes.
  template <class Compute>
  void forEachLanes(std::size_t begin, std::size_t end, const Compute& compute) {
    Levels levels;
    for (; begin < end; begin += kLanes) {
      const std::size_t count = std::min(kLanes, end - begin);
      for (std::size_t i = 0; i < kLanes; ++i) {
        const Record& record = records[begin + std::min(i, count - 1)];
        levels[i].take(*record.spectrum, record.masks);
      }
      compute(levels, std::span(metrics).subspan(begin, count));
    }
  }
};

void addTones(const Series::Levels& levels, std::span<RecordMetrics> metrics) {
  const Tones tones = tonesOf(levels);
  for (std::size_t i = 0; i < metrics.size(); ++i) {
    addTone(tones.corrections[i], tones.bands[i], metrics[i]);
  }
}

Series seriesOf(const AQ_SpectralTimeHistory& history, const AQ_MaskMap* map) {
  Series series;
  const auto count = static_cast<std::size_t>(std::distance(history.begin(), history.end()));
  series.records.reserve(count);
  series.metrics.reserve(count);
  for (const auto& [number, object] : history) {
    const AQ_Spectrum& spectrum = orThrow(object);
    RecordMetrics& metrics = series.metrics.emplace_back();
    metrics.record = static_cast<std::int16_t>(number);
    metrics.seconds = spectrum.timeValue().TODseconds();
    metrics.values.fill(kNoValue);
    series.records.push_back({&spectrum, rowOf(map, metrics.record)});
  }
  return series;
}

/// The range of indices of the records that may belong to the event: from the first to the last
/// that may reach the 10 dB-down limits, and those that count for band sharing.
std::pair<std::size_t, std::size_t> eventRange(const std::vector<RecordMetrics>& records) {
  constexpr double kDown = 10.1;   // dB, a little beyond the limits
  constexpr double kMostTone = 7;  // dB, a little more than any correction
  constexpr std::size_t kBeside = 2;
  double highest = -std::numeric_limits<double>::infinity();
  for (const auto& record : records) highest = std::fmax(highest, record.value(AQ_METRIC_PNL));
  const auto mayReach = [&](const RecordMetrics& record) {
    return record.value(AQ_METRIC_PNL) + kMostTone >= highest - kDown;
  };
  const auto first = std::find_if(records.begin(), records.end(), mayReach);
  const auto last = std::find_if(records.rbegin(), records.rend(), mayReach);
  const auto begin = static_cast<std::size_t>(first - records.begin());
  const auto end = static_cast<std::size_t>(records.rend() - last);
  return {begin - std::min(begin, kBeside), std::min(end + kBeside, records.size())};
}

}  // namespace

HistoryMetrics historyMetrics(const AQ_SpectralTimeHistory& history, const AQ_MaskMap* map) {
  Series series = seriesOf(history, map);
  series.forEachLanes(0, series.records.size(), [](const auto& levels, auto metrics) {
    for (std::size_t i = 0; i < metrics.size(); ++i) {
      addLevels(levels[i], metrics[i]);
      addPerceivedNoise(levels[i], metrics[i]);
    }
    addTones(levels, metrics);
  });
  HistoryMetrics result;
  result.records = std::move(series.metrics);
  for (std::size_t i = 0; i < result.records.size(); ++i) {
    const AQ_MaskRow* const row = series.records[i].masks;
    result.records[i].value(AQ_METRIC_INTEG, 0);
    if (map == nullptr) continue;
    result.records[i].value(AQ_METRIC_LGB, row == nullptr ? 0 : lastGoodBand(*row));
  }
  result.event = eventOf(result.records, durationsOf(result.records));
  if (result.event) flagRecords(*result.event, result.records);
  return result;
}

HistoryEvent historyEvent(const AQ_SpectralTimeHistory& history, const AQ_MaskMap* map) {
  Series series = seriesOf(history, map);
  std::vector<RecordMetrics>& records = series.metrics;
  series.forEachLanes(0, records.size(), [](const auto& levels, auto metrics) {
    for (std::size_t i = 0; i < metrics.size(); ++i) addPerceivedNoise(levels[i], metrics[i]);
  });
  // Other records are below the limits with or without their corrections.
  for (RecordMetrics& record : records) {
    record.value(AQ_METRIC_PNLT, record.value(AQ_METRIC_PNL));
  }
  const auto [begin, end] = eventRange(records);
  series.forEachLanes(begin, end, addTones);
  HistoryEvent result;
  result.records = records.size();
  if (!records.empty()) result.firstRecord = records.front().record;
  result.event = eventOf(records, durationsOf(records));
  return result;
}

}  // namespace aq
