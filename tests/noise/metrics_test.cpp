#include <aq/noise/audit_metrics.h>
#include <aq/noise/history_metrics.h>
#include <aq/noise/perceived_noise_level.h>
#include <aq/noise/set_metrics.h>
#include <aq/noise/tone_correction.h>
#include <aq/noise/weighted_level.h>
#include <gtest/gtest.h>

#include <cmath>
#include <random>

#include "tests/noise/spectra.h"
#include "tests/support/errors.h"

namespace aq {
namespace {

using test::rowOf;
using test::spectrumOf;

/// A spectrum with bands 17 to 40 at the same level, and a tone at 2.5 kHz.
std::shared_ptr<AQ_Spectrum> recordAt(double seconds, double level) {
  AQ_Spectrum spectrum;
  for (std::int16_t band = 17; band <= 40; ++band) spectrum.SPL(band, level + (band == 34 ? 9 : 0));
  auto record = std::make_shared<AQ_Spectrum>(spectrum);
  record->Time()->TODseconds(seconds);
  return record;
}

/// A history of half-second records, numbered from `first`.
AQ_SpectralTimeHistory historyOf(std::int16_t first, double seconds,
                                 const std::vector<double>& levels) {
  AQ_SpectralTimeHistory history;
  for (const double level : levels) {
    history.spectrum(first++, recordAt(std::fmod(seconds, kSecondsPerDay), level));
    seconds += 0.5;
  }
  return history;
}

const std::vector<double> kFlyOver{50, 58, 66, 70, 66, 58, 50};

TEST(SetMetrics, StoresTenMetricsOfEveryRecord) {
  auto history = historyOf(5, 3600, kFlyOver);
  history.Metrics()->MetricType(AQ_METRIC_PNL);
  const auto event = setMetrics(history);
  ASSERT_TRUE(event);
  EXPECT_EQ(history.Metrics()->MetricTypeString(),
            "AWT, CWT, DWT, OA, PNL, PNLT, TONECOR, TONEBND, LGB, INTEG");
  for (std::int16_t record = 5; record < 12; ++record) {
    SCOPED_TRACE(record);
    const auto spectrum = history.spectrum(record);
    const auto metric = spectrum->Metric();
    EXPECT_EQ(metric->AWT(), static_cast<float>(*weightedLevel(*spectrum, AQ_METRIC_AWT)));
    EXPECT_EQ(metric->CWT(), static_cast<float>(*weightedLevel(*spectrum, AQ_METRIC_CWT)));
    EXPECT_EQ(metric->DWT(), static_cast<float>(*weightedLevel(*spectrum, AQ_METRIC_DWT)));
    EXPECT_EQ(metric->OA(), static_cast<float>(*weightedLevel(*spectrum, AQ_METRIC_OA)));
    const double pnl = perceivedNoiseLevel(*spectrum);
    const double tone = toneCorrection(*spectrum).correction;
    EXPECT_EQ(metric->PNL(), static_cast<float>(pnl));
    EXPECT_EQ(metric->PNLT(), static_cast<float>(pnl + tone));
    EXPECT_EQ(metric->TONECOR(), static_cast<float>(tone));
    EXPECT_EQ(metric->TONEBND(), 34);
    EXPECT_FALSE(metric->contains(AQ_METRIC_LGB));
    EXPECT_TRUE(metric->contains(AQ_METRIC_INTEG));
  }
  EXPECT_EQ(event->maximum, 3U);
  EXPECT_EQ(event->pnltm, historyMetrics(history).records[3].value(AQ_METRIC_PNLT));
  EXPECT_EQ(history.spectrum(8)->Metric()->INTEG(), AQ_INTEG_MAX);
  ASSERT_TRUE(event->first && event->last);
  EXPECT_EQ(history.spectrum(static_cast<std::int16_t>(5 + *event->first))->Metric()->INTEG(),
            AQ_INTEG_FST);
  EXPECT_EQ(history.spectrum(static_cast<std::int16_t>(5 + *event->last))->Metric()->INTEG(),
            AQ_INTEG_LST);
}

/// Compares the metrics of each record with those of its spectrum alone.
void expectEachAsAlone(const AQ_SpectralTimeHistory& history) {
  for (const RecordMetrics& found : historyMetrics(history).records) {
    SCOPED_TRACE(found.record);
    const AQ_Spectrum& spectrum = *history.spectrum(found.record);
    for (const auto type : {AQ_METRIC_AWT, AQ_METRIC_CWT, AQ_METRIC_DWT, AQ_METRIC_OA}) {
      const auto alone = weightedLevel(spectrum, type);
      EXPECT_EQ(found.has(type), alone.has_value());
      EXPECT_EQ(alone.value_or(0), found.has(type) ? found.value(type) : 0);
    }
    EXPECT_EQ(found.has(AQ_METRIC_PNL), found.perceivedBands > 0);
    if (!found.has(AQ_METRIC_PNL)) continue;
    const ToneCorrection tone = toneCorrection(spectrum);
    EXPECT_EQ(found.value(AQ_METRIC_PNL), perceivedNoiseLevel(spectrum));
    EXPECT_EQ(found.value(AQ_METRIC_TONECOR), tone.correction);
    EXPECT_EQ(found.value(AQ_METRIC_TONEBND), tone.band);
  }
}

TEST(HistoryMetrics, RecordsTogetherEqualEachAlone) {
  const std::vector<Variant> tones{70.0, 62.5, 70.25, 81.0, 80.0, 66.0, 65.0};
  const std::vector<AQ_Spectrum> kinds{
      spectrumOf(17, tones),          spectrumOf(7, {90.001, 60.0, 61.0, 62.0, 50.0}),
      spectrumOf(44, {60.0}),         spectrumOf(19, {60.003, 70.0, 60.0, Variant(), 90.0}),
      spectrumOf(40, tones),          spectrumOf(7, tones),
      spectrumOf(30, {-4000.0, 20.0})};
  AQ_SpectralTimeHistory history;
  for (std::int16_t i = 0; i < 21; ++i) {
    auto record = std::make_shared<AQ_Spectrum>(kinds[static_cast<std::size_t>(i * 5 % 7)]);
    record->Time()->TODseconds(i);
    history.spectrum(i, record);
  }
  expectEachAsAlone(history);
}

TEST(HistoryMetrics, AShorterRecordIgnoresTheOneBefore) {
  AQ_SpectralTimeHistory history;
  for (std::int16_t i = 0; i < 4; ++i) {
    const auto& levels = i < 2 ? std::vector<Variant>{70.0, 71.0, 72.0, 50.0, 60.0}
                               : std::vector<Variant>{60.0, 61.0, 64.0};
    history.spectrum(i, std::make_shared<AQ_Spectrum>(spectrumOf(19, levels)));
    history.spectrum(i)->Time()->TODseconds(i);
  }
  expectEachAsAlone(history);
}

TEST(HistoryEvent, EqualsThatOfHistoryMetrics) {
  std::mt19937 random(7);
  for (int run = 0; run < 300; ++run) {
    SCOPED_TRACE(run);
    AQ_SpectralTimeHistory history;
    const auto records = static_cast<std::int16_t>(random() % 40);
    for (std::int16_t record = 1; record <= records; ++record) {
      if (random() % 10 == 0) continue;
      const double loudest = run % 3 == 0 ? 20 : 90;
      const double level = loudest - (0.2 + run % 5) * std::abs(record - records / 2);
      auto spectrum = recordAt(0.5 * record, level);
      for (int tones = 0; tones < 4; ++tones) {
        const auto band = static_cast<std::int16_t>(17 + random() % 24);
        spectrum->SPL(band, random() % 8 == 0
                                ? kInvalidLevel
                                : level + std::uniform_int_distribution(0, 19)(random));
      }
      history.spectrum(record, std::move(spectrum));
    }
    const HistoryMetrics metrics = historyMetrics(history);
    const HistoryEvent found = historyEvent(history);
    ASSERT_EQ(found.records, metrics.records.size());
    ASSERT_EQ(found.event.has_value(), metrics.event.has_value());
    if (!metrics.event) continue;
    EXPECT_EQ(found.firstRecord, metrics.records.front().record);
    EXPECT_EQ(found.event->epnl, metrics.event->epnl);
    EXPECT_EQ(found.event->epnlWithBandSharing, metrics.event->epnlWithBandSharing);
    EXPECT_EQ(found.event->maximum, metrics.event->maximum);
    EXPECT_EQ(found.event->first, metrics.event->first);
    EXPECT_EQ(found.event->last, metrics.event->last);
    EXPECT_EQ(found.event->secondPeaks, metrics.event->secondPeaks);
  }
}

TEST(SetMetrics, MasksByRecordNumberAndLeavesTheMapUnchanged) {
  auto history = historyOf(1, 3600, {60, 60, 60, 60});
  AQ_MaskMap map;
  map.Row(4, std::make_shared<AQ_MaskRow>(rowOf(28, {"M-", "M-"})));
  map.Row(2, std::make_shared<AQ_MaskRow>(rowOf(34, {"M-"})));
  map.Row(3, std::make_shared<AQ_MaskRow>(rowOf(33, {"--", "MS", "--", "F-"})));
  map.Row(9, std::make_shared<AQ_MaskRow>());
  setMetrics(history, &map);
  const std::vector<float> lastGood{0, 33, 33, 9999};
  const std::vector<float> toneBands{34, 0, 34, 0};
  for (std::int16_t record = 1; record <= 4; ++record) {
    SCOPED_TRACE(record);
    const auto at = static_cast<std::size_t>(record - 1);
    EXPECT_EQ(history.spectrum(record)->Metric()->LGB(), lastGood[at]);
    EXPECT_EQ(history.spectrum(record)->Metric()->TONEBND(), toneBands[at]);
  }
  EXPECT_EQ(map.Row(4)->LowBand(), 28);
  EXPECT_EQ(map.Row(4)->HighBand(), 29);
  EXPECT_EQ(map.Row(2)->LowBand(), 34);
  EXPECT_FALSE(map.contains(1));
  EXPECT_EQ(map.Row(3)->LGB(), 0);
  setMetrics(history);  // without a map, the last good band stays as it is
  EXPECT_EQ(history.spectrum(4)->Metric()->LGB(), 9999);
  EXPECT_EQ(history.spectrum(2)->Metric()->TONEBND(), 34);
}

TEST(SetMetrics, WhatHasNoValueIsUnset) {
  auto history = historyOf(1, 10, {60, 60, 60});
  setMetrics(history);
  for (std::int16_t band = 17; band <= 40; ++band) history.spectrum(2)->SPL(band, 9999.0);
  const auto held = history.spectrum(2)->Metric();
  const auto types = history.Metrics()->MetricTypes();
  const auto event = setMetrics(history);
  EXPECT_EQ(history.spectrum(2)->Metric(), held);
  EXPECT_EQ(history.Metrics()->MetricTypes(), types);
  for (std::int32_t type = AQ_METRIC_AWT; type < AQ_METRIC_INTEG; ++type) {
    EXPECT_FALSE(held->contains(static_cast<AQ_METRIC_TYPE>(type))) << type;
  }
  EXPECT_EQ(held->INTEG(), 0);
  EXPECT_EQ(event->maximum, 0U);
  EXPECT_EQ(event->secondPeaks, std::vector<std::size_t>());

  AQ_SpectralTimeHistory low;
  low.spectrum(1, std::make_shared<AQ_Spectrum>(spectrumOf(15, {60.0})));
  EXPECT_FALSE(setMetrics(low));
  EXPECT_FALSE(historyEvent(low).event);
  EXPECT_EQ(low.spectrum(1)->Metric()->OA(), 60);
  EXPECT_FALSE(low.spectrum(1)->Metric()->contains(AQ_METRIC_PNLT));
  AQ_SpectralTimeHistory empty;
  EXPECT_FALSE(setMetrics(empty));
}

TEST(SetMetrics, TimeBetweenStampsCounts) {
  const auto epnl = [](AQ_SpectralTimeHistory history) { return setMetrics(history)->epnl; };
  const auto usual = historyOf(1, 3600, kFlyOver);
  EXPECT_NEAR(epnl(historyOf(1, 86399, kFlyOver)), epnl(usual), 1e-12);

  AQ_SpectralTimeHistory slow;  // records are stored in descending order
  for (std::int16_t record = 7; record >= 1; --record) {
    slow.spectrum(record, recordAt(record * 2.0, kFlyOver[static_cast<std::size_t>(record - 1)]));
  }
  EXPECT_NEAR(epnl(slow), epnl(usual) + 10 * std::log10(4), 1e-9);

  // Record 3 is missing, so record 2 lasts a second, and the last record just as long.
  AQ_SpectralTimeHistory gap;
  gap.spectrum(1, recordAt(0, 40));
  gap.spectrum(2, recordAt(0.5, 60));
  gap.spectrum(4, recordAt(1.5, 60));
  const auto event = setMetrics(gap);
  EXPECT_EQ(event->maximum, 1U);
  EXPECT_EQ(event->last, std::nullopt);
  EXPECT_NEAR(event->epnl, event->pnltm + 10 * std::log10(0.2), 1e-9);
  EXPECT_NEAR(epnl(historyOf(1, 0, {60})), event->pnltm + 10 * std::log10(0.05), 1e-9);
  AQ_SpectralTimeHistory two;
  for (std::int16_t record = 0; record < 2; ++record)
    two.spectrum(record, recordAt(record * 2, 60));
  EXPECT_NEAR(epnl(two), event->pnltm + 10 * std::log10(0.4), 1e-9);
  two.spectrum(0)->Time()->TODseconds(12);  // record 1 is then on the next day
  EXPECT_NEAR(epnl(two), event->pnltm + 10 * std::log10(0.2 * 86390), 1e-9);
}

TEST(SetMetrics, AFailureLeavesTheHistoryAsItWas) {
  const auto unchanged = [](AQ_SpectralTimeHistory& history, std::int16_t record) {
    return !history.spectrum(record)->hasMetric() && history.Metrics()->MetricTypes()->Count() == 0;
  };
  auto still = historyOf(1, 10, {60, 61, 62});
  still.spectrum(3)->Time()->TODseconds(10.5);
  try {
    setMetrics(still);
    FAIL();
  } catch (const Error& error) {
    EXPECT_EQ(error.code(), ErrorCode::InvalidValue);
    EXPECT_STREQ(error.what(), "records 2 and 3 have the same time");
  }
  EXPECT_TRUE(unchanged(still, 1));
  still.spectrum(2)->Time()->TODseconds(0);
  still.spectrum(3)->Time()->assignSeconds(kSecondsPerDay, 0);
  EXPECT_ERROR(setMetrics(still), InvalidValue);

  auto lacking = historyOf(1, 10, {60, 61});
  lacking.spectrum(3, nullptr);
  EXPECT_ERROR(setMetrics(lacking), ObjectNotSet);
  EXPECT_TRUE(unchanged(lacking, 1));

  auto loud = historyOf(1, 10, {60, 61});
  loud.spectrum(2)->SPL(30, 1e300);
  EXPECT_ERROR(setMetrics(loud), Overflow);
  EXPECT_TRUE(unchanged(loud, 1));

  auto wide = historyOf(1, 10, {60, 61});
  wide.spectrum(2)->SPL(50, 1e300);  // too large for single precision
  EXPECT_ERROR(setMetrics(wide), Overflow);
  EXPECT_EQ(wide.spectrum(1)->Metric()->PNL(), 0);

  auto history = historyOf(1, 10, {60, 61});
  AQ_MaskMap map;
  map.Row(2, nullptr);
  EXPECT_ERROR(setMetrics(history, &map), ObjectNotSet);
}

TEST(AuditMetrics, ListsStoredMetricsThatDiffer) {
  auto history = historyOf(1, 3600, kFlyOver);
  EXPECT_TRUE(auditMetrics(history, nullptr, 0).empty());  // no metrics are stored yet
  EXPECT_FALSE(history.spectrum(1)->hasMetric());
  AQ_MaskMap map;
  map.Row(3, std::make_shared<AQ_MaskRow>(rowOf(30, {"M-"})));
  setMetrics(history, &map);
  EXPECT_TRUE(auditMetrics(history, &map, 0).empty());

  const double pnl = history.spectrum(2)->Metric()->PNL();
  history.spectrum(2)->Metric()->PNL(static_cast<float>(pnl + 0.25));
  history.spectrum(2)->Metric()->AWT("loud");
  history.spectrum(3)->Metric()->LGB(30);
  history.spectrum(4)->Metric()->INTEG(AQ_INTEG_2ND);
  const auto found = auditMetrics(history, &map, 0.2);
  ASSERT_EQ(found.size(), 4U);
  EXPECT_EQ(found[0].metric, AQ_METRIC_AWT);
  EXPECT_TRUE(std::isnan(found[0].stored));
  EXPECT_EQ(found[1].record, 2);
  EXPECT_EQ(found[1].metric, AQ_METRIC_PNL);
  EXPECT_EQ(found[1].computed, pnl);
  EXPECT_NEAR(found[1].stored, pnl + 0.25, 1e-4);
  EXPECT_EQ(found[2].metric, AQ_METRIC_LGB);
  EXPECT_EQ(found[2].computed, 29);
  EXPECT_EQ(found[3].metric, AQ_METRIC_INTEG);
  EXPECT_EQ(found[3].stored, AQ_INTEG_2ND);
  EXPECT_EQ(found[3].computed, AQ_INTEG_MAX);
  EXPECT_EQ(auditMetrics(history, &map, 2).size(), 3U);  // bands and flags have no tolerance

  AQ_SpectralTimeHistory silent;
  silent.spectrum(1, std::make_shared<AQ_Spectrum>(spectrumOf(30, {9999.0})));
  silent.spectrum(1)->Metric()->PNL(80);
  silent.spectrum(1)->Metric()->PNLT(0);  // a copy has 0 for a missing metric
  silent.spectrum(1)->Metric()->LGB(31);  // without a map, there is nothing to compare it with
  const auto made = auditMetrics(silent, nullptr, 0);
  ASSERT_EQ(made.size(), 1U);
  EXPECT_EQ(made[0].metric, AQ_METRIC_PNL);
  EXPECT_TRUE(std::isnan(made[0].computed));
  EXPECT_ERROR(auditMetrics(silent, nullptr, -0.1), InvalidArgument);
  EXPECT_ERROR(auditMetrics(silent, nullptr, std::nan("")), InvalidArgument);
}

}  // namespace
}  // namespace aq
