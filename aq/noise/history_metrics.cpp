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
constexpr double kRecordSeconds = 0.5;  // the length of a record if the stamps do not give it

const AQ_MaskRow* rowOf(const AQ_MaskMap* map, std::int16_t record) {
  if (map == nullptr || !map->contains(record)) return nullptr;
  return &orThrow(map->heldRow(record));
}

/// A record of a history; `Records` are in order of record number.
struct Record {
  const AQ_Spectrum* spectrum;
  const AQ_MaskRow* masks;  // may be null
  std::int16_t number;
  double seconds;  // the time of day of the stamp
};
using Records = std::vector<Record>;

Records recordsOf(const AQ_SpectralTimeHistory& history, const AQ_MaskMap* map) {
  Records records;
  records.reserve(static_cast<std::size_t>(std::distance(history.begin(), history.end())));
  for (const auto& [place, object] : history) {
    const AQ_Spectrum& spectrum = orThrow(object);
    const auto number = static_cast<std::int16_t>(place);
    records.push_back({&spectrum, rowOf(map, number), number, spectrum.timeValue().TODseconds()});
  }
  return records;
}

/// Calls `use` for each record from `begin` up to, but not including, `end`, with its index, its
/// levels, its tone correction and, if `withBands`, the band that caused it. Computes as many
/// corrections at a time as there are lanes.
template <class Use>
void forEachTone(const Records& records, std::size_t begin, std::size_t end, bool withBands,
                 const Use& use) {
  std::array<CountedLevels, kLanes> levels;
  Tones tones;
  for (; begin < end; begin += kLanes) {
    const std::size_t count = std::min(kLanes, end - begin);
    for (std::size_t i = 0; i < kLanes; ++i) {  // repeats the last record to fill the lanes
      const Record& record = records[begin + std::min(i, count - 1)];
      levels[i].take(*record.spectrum, record.masks);
    }
    tones.find(levels, withBands);
    for (std::size_t i = 0; i < count; ++i) {
      use(begin + i, levels[i], tones.correction(i), tones.band(i));
    }
  }
}

/// How many of the bands used for the perceived noise level have a level that counts.
std::int16_t perceivedBandsOf(const CountedLevels& levels) {
  return levels.count(kFirstNoyBand, kLastNoyBand);
}

double totalNoisiness(const CountedLevels& levels, const Record& record) {
  const double total = totalNoisinessOf(levels);
  if (std::isfinite(total)) return total;
  throw Error(ErrorCode::Overflow, "record " + std::to_string(record.number) +
                                       ": the levels are too high for a perceived noise level");
}

/// The values that an event depends on, by record index. NaN means no value.
struct EventValues {
  explicit EventValues(std::size_t records)
      : pnlt(records, kNoValue), corrections(records, kNoValue) {}
  std::vector<double> pnlt;
  std::vector<double> corrections;
};

/// How long each record lasts: from its stamp to the next one, also across midnight. The last
/// record lasts as long as the one before it, a single record `kRecordSeconds`.
std::vector<double> durationsOf(const Records& records) {
  std::vector<double> durations(records.size(), kRecordSeconds);
  for (std::size_t i = 0; i + 1 < records.size(); ++i) {
    double step = records[i + 1].seconds - records[i].seconds;
    if (!(step > 0 && step < kSecondsPerDay)) step = std::fmod(step, kSecondsPerDay);
    durations[i] = step < 0 ? step + kSecondsPerDay : step;
    if (durations[i] > 0) continue;
    throw Error(ErrorCode::InvalidValue, "records " + std::to_string(records[i].number) + " and " +
                                             std::to_string(records[i + 1].number) +
                                             " have the same time");
  }
  if (durations.size() > 1) durations.back() = *(durations.end() - 2);
  return durations;
}

/// The values by record number, from the lowest up; `other` for a number without a record.
std::vector<double> byNumber(const Records& records, std::vector<double> values, double other) {
  const int low = records.front().number;
  const auto numbers = static_cast<std::size_t>(records.back().number - low) + 1;
  if (numbers == values.size()) return values;
  std::vector<double> all(numbers, other);
  for (std::size_t i = 0; i < records.size(); ++i) {
    all[static_cast<std::size_t>(records[i].number - low)] = values[i];
  }
  return all;
}

/// Index 0 is the lowest record number; a number without a record gives an index without PNLT.
std::optional<NoiseEvent> eventOf(const Records& records, EventValues values) {
  std::vector<double> durations = durationsOf(records);
  const auto& pnlt = values.pnlt;
  const bool hasPnlt = std::any_of(pnlt.begin(), pnlt.end(), [](double v) { return v == v; });
  if (!hasPnlt) return std::nullopt;
  return noiseEvent(byNumber(records, std::move(values.pnlt), kNoValue),
                    byNumber(records, std::move(durations), kRecordSeconds),
                    byNumber(records, std::move(values.corrections), kNoValue));
}

RecordMetrics metricsOf(const Record& record, const CountedLevels& levels, double correction,
                        double band) {
  RecordMetrics metrics;
  metrics.record = record.number;
  metrics.seconds = record.seconds;
  metrics.values.fill(kNoValue);
  const WeightedLevels weighted = weightedLevelsOf(levels);
  std::copy(weighted.begin(), weighted.end(), metrics.values.begin());
  metrics.perceivedBands = perceivedBandsOf(levels);
  if (metrics.perceivedBands > 0) {
    const double level = perceivedLevelOf(totalNoisiness(levels, record));
    metrics.value(AQ_METRIC_PNL, level);
    metrics.value(AQ_METRIC_PNLT, level + correction);
    metrics.value(AQ_METRIC_TONECOR, correction);
    metrics.value(AQ_METRIC_TONEBND, band);
  }
  metrics.value(AQ_METRIC_INTEG, 0);
  return metrics;
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

/// The total noisiness of each record; NaN if none of the bands it is summed over has a level that
/// counts.
std::vector<double> totalsOf(const Records& records) {
  std::vector<double> totals;
  totals.reserve(records.size());
  CountedLevels levels;
  for (const Record& record : records) {
    levels.take(*record.spectrum, record.masks);
    const double total = totalNoisiness(levels, record);
    totals.push_back(total == 0 && perceivedBandsOf(levels) == 0 ? kNoValue : total);
  }
  return totals;
}

/// The values of the records that may belong to the event: from the first to the last that may
/// reach the 10 dB-down limits and, for the band-sharing adjustment, two more on either side. Other
/// records get no value.
EventValues eventValuesOf(const Records& records) {
  constexpr double kDown = 10.1;     // dB, a little beyond the limits
  constexpr double kMostTone = 6.7;  // dB, a little more than any correction
  constexpr std::size_t kBeside = 2;
  EventValues values(records.size());
  const std::vector<double> totals = totalsOf(records);
  const auto add = [&](std::size_t begin, std::size_t end) {
    forEachTone(records, begin, end, false,
                [&](std::size_t i, const auto&, double correction, double) {
                  if (std::isnan(totals[i])) return;
                  values.corrections[i] = correction;
                  values.pnlt[i] = perceivedLevelOf(totals[i]) + correction;
                });
  };
  std::size_t loudest = 0;
  for (std::size_t i = 1; i < totals.size(); ++i) {
    if (std::isnan(totals[loudest]) || totals[i] > totals[loudest]) loudest = i;
  }
  add(loudest, loudest + 1);
  const double lowest = values.pnlt[loudest] - kDown - kMostTone;
  const auto mayReach = [least = lowest > 0 ? totalNoisinessAt(lowest) : 0](double total) {
    return total >= least;
  };
  const auto first = std::find_if(totals.begin(), totals.end(), mayReach);
  const auto last = std::find_if(totals.rbegin(), totals.rend(), mayReach);
  const auto begin = static_cast<std::size_t>(first - totals.begin());
  const auto end = static_cast<std::size_t>(totals.rend() - last);
  add(begin - std::min(begin, kBeside), std::min(end + kBeside, totals.size()));
  return values;
}

}  // namespace

HistoryMetrics historyMetrics(const AQ_SpectralTimeHistory& history, const AQ_MaskMap* map) {
  const Records records = recordsOf(history, map);
  EventValues values(records.size());
  HistoryMetrics result;
  result.records.reserve(records.size());
  forEachTone(records, 0, records.size(), true,
              [&](std::size_t i, const auto& levels, double correction, double band) {
                const Record& record = records[i];
                RecordMetrics metrics = metricsOf(record, levels, correction, band);
                if (map != nullptr) {
                  const bool hasRow = record.masks != nullptr;
                  metrics.value(AQ_METRIC_LGB, hasRow ? lastGoodBand(*record.masks) : 0);
                }
                values.pnlt[i] = metrics.value(AQ_METRIC_PNLT);
                values.corrections[i] = metrics.value(AQ_METRIC_TONECOR);
                result.records.push_back(metrics);
              });
  result.event = eventOf(records, std::move(values));
  if (result.event) flagRecords(*result.event, result.records);
  return result;
}

HistoryEvent historyEvent(const AQ_SpectralTimeHistory& history, const AQ_MaskMap* map) {
  const Records records = recordsOf(history, map);
  HistoryEvent result;
  result.records = records.size();
  if (records.empty()) return result;
  result.firstRecord = records.front().number;
  result.event = eventOf(records, eventValuesOf(records));
  return result;
}

}  // namespace aq
