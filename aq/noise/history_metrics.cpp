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
#include "aq/noise/tone_procedure.h"

namespace aq {
namespace {

constexpr double kNoValue = std::numeric_limits<double>::quiet_NaN();
constexpr double kRecordSeconds = 0.5;  // of a single record

const AQ_MaskRow* rowOf(const AQ_MaskMap* map, std::int16_t record) {
  if (map == nullptr || !map->contains(record)) return nullptr;
  return &orThrow(map->heldRow(record));
}

/// How many of bands 17 to 40 of each record have a level that counts.
BlockRow perceivedBandsOf(const RecordBlock& block) {
  BlockRow bands{};
  for (std::int32_t band = kFirstNoyBand; band <= kLastNoyBand; ++band) {
    const BlockRow& levels = block.levels(band);
    for (std::size_t r = 0; r < kBlockRecords; ++r) bands[r] += std::isnan(levels[r]) ? 0 : 1;
  }
  return bands;
}

/// Computes the metrics of records, a block at a time, reusing the memory of the previous block.
class BlockMetrics {
 public:
  using Records = std::span<RecordMetrics>;  // with their record numbers

  /// Sets the values of `metrics`, except those that need a map or an event.
  void find(std::span<const RecordBlock::Record> records, Records metrics) {
    block_.take(records);
    findLevels(metrics);
    findPerceivedNoise(metrics);
  }

 private:
  void findLevels(Records metrics) const {
    const WeightedLevels levels = weightedLevelsOf(block_);
    for (std::size_t r = 0; r < metrics.size(); ++r) {
      for (std::size_t type = 0; type < levels.size(); ++type) {
        metrics[r].values[type] = levels[type][r];
      }
    }
  }

  void findPerceivedNoise(Records metrics) {
    const BlockRow bands = perceivedBandsOf(block_);
    const BlockRow pnl = perceivedNoiseLevelsOf(block_);
    tone_.take(block_);
    for (std::size_t r = 0; r < metrics.size(); ++r) {
      RecordMetrics& record = metrics[r];
      record.perceivedBands = static_cast<std::int16_t>(bands[r]);
      if (record.perceivedBands == 0) continue;
      if (!std::isfinite(pnl[r])) {
        throw Error(ErrorCode::Overflow,
                    "record " + std::to_string(record.record) +
                        ": the levels are too high for a perceived noise level");
      }
      record.value(AQ_METRIC_PNL, pnl[r]);
      record.value(AQ_METRIC_PNLT, pnl[r] + tone_.largest[r]);
      record.value(AQ_METRIC_TONECOR, tone_.largest[r]);
      record.value(AQ_METRIC_TONEBND, tone_.largestBand[r]);
    }
  }

  RecordBlock block_;
  ToneProcedure tone_;
};

/// How long each record lasts, from the seconds of the day of their stamps: until the next stamp,
/// across midnight too; the last one as long as the one before it.
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

/// The metrics of a history's records without their parts in the event, and the seconds of the day
/// of their stamps.
struct Series {
  std::vector<RecordMetrics> records;
  std::vector<double> stamps;
};

/// Computes the metrics of records in the order they are taken, a block at a time.
class SeriesMaker {
 public:
  SeriesMaker(std::size_t count, const AQ_MaskMap* map) : map_(map) {
    series_.records.reserve(count);
    series_.stamps.reserve(count);
  }

  void add(std::int16_t record, const AQ_Spectrum& spectrum) {
    const AQ_MaskRow* const row = rowOf(map_, record);
    RecordMetrics& metrics = series_.records.emplace_back();
    metrics.record = record;
    metrics.values.fill(kNoValue);
    metrics.value(AQ_METRIC_INTEG, 0);
    if (map_ != nullptr) metrics.value(AQ_METRIC_LGB, row == nullptr ? 0 : lastGoodBand(*row));
    series_.stamps.push_back(spectrum.timeValue().TODseconds());
    waiting_[count_++] = {&spectrum, row};
    if (count_ == waiting_.size()) findWaiting();
  }

  [[nodiscard]] Series finish() {
    findWaiting();
    return std::move(series_);
  }

 private:
  void findWaiting() {
    block_.find(std::span(waiting_).first(count_), std::span(series_.records).last(count_));
    count_ = 0;
  }

  const AQ_MaskMap* map_;
  Series series_;
  BlockMetrics block_;
  std::array<RecordBlock::Record, kBlockRecords> waiting_{};
  std::size_t count_ = 0;
};

Series seriesOf(const AQ_SpectralTimeHistory& history, const AQ_MaskMap* map) {
  const auto count = std::distance(history.begin(), history.end());
  SeriesMaker maker(static_cast<std::size_t>(count), map);
  for (const auto& [number, object] : history) {
    maker.add(static_cast<std::int16_t>(number), orThrow(object));
  }
  return maker.finish();
}

}  // namespace

HistoryMetrics historyMetrics(const AQ_SpectralTimeHistory& history, const AQ_MaskMap* map) {
  Series series = seriesOf(history, map);
  HistoryMetrics result;
  result.records = std::move(series.records);
  if (result.records.empty()) return result;
  result.event = eventOf(result.records, durationsOf(result.records, series.stamps));
  if (result.event) flagRecords(*result.event, result.records);
  return result;
}

}  // namespace aq
