#include <aq/spectral/band.h>
#include <aq/spectral/metric_summary.h>
#include <aq/spectral/spectrum.h>
#include <gtest/gtest.h>

#include "tests/support/errors.h"

namespace aq {
namespace {

TEST(Spectrum, RangeOnlyWidens) {
  AQ_Spectrum spectrum;
  EXPECT_EQ(spectrum.LowBand(), 9999);
  EXPECT_EQ(spectrum.HighBand(), -1);
  EXPECT_EQ(spectrum.Level(), 0);
  EXPECT_TRUE(spectrum.Encompasses(AQ_Spectrum()));
  spectrum.SPL(20, 60.0);
  spectrum.SPL(14, 61.0);
  spectrum.SPL(17, 62.0);
  spectrum.SPL(17, 63.0);
  EXPECT_EQ(spectrum.LowBand(), 14);
  EXPECT_EQ(spectrum.HighBand(), 20);
  EXPECT_EQ(spectrum.SPL(17), Variant(63.0));
  EXPECT_ERROR(spectrum.SPL(15), InvalidArgument);
  EXPECT_ERROR(spectrum.SPL(13), InvalidArgument);
  EXPECT_ERROR(spectrum.Copy(), InvalidArgument);
  AQ_Spectrum whole;
  for (const int band : {18, 17, 19}) whole.SPL(static_cast<std::int16_t>(band), 60.5);
  EXPECT_EQ(whole.levelCodes().size(), 3U);
  whole.SPL(18, 60.125);
  const std::vector<double> levels{60.5, 60.125, 60.5};
  EXPECT_EQ(whole.plainLevels(), levels);
  whole.SPL(19, 60.5F);
  const auto numbers = whole.levelNumbers();
  EXPECT_EQ(std::vector<double>(numbers.begin(), numbers.end()), levels);
  whole.SPL(19, "60.5");
  EXPECT_TRUE(whole.levelNumbers().empty());
  AQ_Spectrum high;
  high.SPL(10000, 1.0);
  EXPECT_EQ(high.LowBand(), 9999);  // as without bands, since 10000 is not below it
  EXPECT_ERROR(high.Copy(), InvalidArgument);
  AQ_Spectrum low;
  low.SPL(-2, 1.0);
  EXPECT_EQ(low.HighBand(), -1);  // as without bands, since -2 is not above it
  EXPECT_ERROR(low.Copy(), InvalidArgument);
}

TEST(Spectrum, SharesAndCopiesItsObjects) {
  AQ_Spectrum spectrum;
  EXPECT_EQ(spectrum.Time(), spectrum.Time());
  const auto time = std::make_shared<AQ_Time>();
  spectrum.Time(time);
  const auto bare = spectrum.Copy();  // copies a missing metric as one with all values 0
  EXPECT_EQ(bare->Copy()->Metric()->MetricValue(AQ_METRIC_LGB), Variant(0.0F));
  bare->Metric(nullptr);
  EXPECT_EQ(bare->Metric()->MetricValue(AQ_METRIC_LGB), Variant(std::int16_t{0}));
  spectrum.Metric()->PNLT(101.5F);
  spectrum.Level(88);
  const auto copy = spectrum.Copy();
  time->TODseconds(5);
  spectrum.Metric()->PNLT(0);
  EXPECT_EQ(spectrum.Time()->TODseconds(), 5);
  spectrum.lazyTime().assign(7, 8);
  spectrum.Time(nullptr);
  EXPECT_EQ(spectrum.HighBand(), -1);  // the range may lie in the padding of the time
  EXPECT_EQ(spectrum.Time()->TODseconds(), 0);
  EXPECT_EQ(spectrum.Time()->RelSeconds(), 0);
  EXPECT_EQ(copy->Time()->TODseconds(), 0);
  EXPECT_EQ(copy->Metric()->PNLT(), 101.5F);
  EXPECT_EQ(copy->Level(), 88);
}

TEST(Band, KeysAreNumbers) {
  AQ_Band band;
  EXPECT_EQ(band.Copy(), nullptr);
  band.SPL(1, 60.0);
  band.SPL("2", 61.0);
  band.SPL(2.0, 62.0);
  EXPECT_EQ(band.Count(), 2);
  EXPECT_EQ(band.SPL(" 2.00"), Variant(62.0));
  EXPECT_ERROR(band.SPL(3), InvalidArgument);
  EXPECT_ERROR(band.SPL("first"), TypeMismatch);
  EXPECT_ERROR(band.Copy(), ObjectNotSet);
}

TEST(Metric, MissingValuesReadAsZeroAndAreCopiedSo) {
  AQ_Metric metric;
  EXPECT_EQ(metric.MetricValue(AQ_METRIC_LGB), Variant(std::int16_t{0}));
  EXPECT_EQ(metric.PNLT(), 0);
  metric.AWT("n/a");
  metric.PNL(101.1F);
  metric.INTEG(AQ_INTEG_MAX | AQ_INTEG_2ND);
  metric.MetricValue(AQ_METRIC_OA, 100.1);
  EXPECT_EQ(metric.OA(), 100.1F);
  EXPECT_EQ(metric.MetricValue(AQ_METRIC_OA), Variant(100.1F));
  EXPECT_ERROR(metric.MetricValue(AQ_METRIC_CWT, "loud"), TypeMismatch);
  metric.MetricValue(AQ_METRIC_LGB, 30);
  EXPECT_EQ(metric.MetricValue(AQ_METRIC_LGB), Variant(30.0F));
  const auto copy = metric.Copy();
  EXPECT_EQ(copy->AWT(), Variant("n/a"));
  EXPECT_EQ(copy->PNL(), 101.1F);
  EXPECT_EQ(copy->INTEG() & ~AQ_INTEG_MAX, AQ_INTEG_2ND);
  EXPECT_EQ(copy->MetricValue(AQ_METRIC_DWT), Variant(0.0F));
  using Set = void (AQ_Metric::*)(float);
  const std::pair<AQ_METRIC_TYPE, Set> setters[] = {
      {AQ_METRIC_CWT, &AQ_Metric::CWT},         {AQ_METRIC_DWT, &AQ_Metric::DWT},
      {AQ_METRIC_OA, &AQ_Metric::OA},           {AQ_METRIC_PNL, &AQ_Metric::PNL},
      {AQ_METRIC_PNLT, &AQ_Metric::PNLT},       {AQ_METRIC_TONECOR, &AQ_Metric::TONECOR},
      {AQ_METRIC_TONEBND, &AQ_Metric::TONEBND}, {AQ_METRIC_LGB, &AQ_Metric::LGB}};
  for (const auto& [type, set] : setters) ((*copy).*set)(85.5F + static_cast<float>(type));
  for (const auto& [type, set] : setters) {
    EXPECT_EQ(copy->MetricValue(type), Variant(85.5F + static_cast<float>(type)));
  }
}

TEST(Metric, KeepsValuesUnderOtherNumbers) {
  constexpr auto kOther = static_cast<AQ_METRIC_TYPE>(11);
  AQ_Metric metric;
  metric.MetricValue(static_cast<AQ_METRIC_TYPE>(0), 7);
  for (const Variant& value : {Variant(1), Variant("x")}) {
    metric.MetricValue(kOther, value);
    EXPECT_EQ(metric.MetricValue(kOther), value);
  }
  EXPECT_FALSE(metric.Copy()->contains(kOther));
  metric.remove(kOther);
  EXPECT_FALSE(metric.contains(kOther));
  EXPECT_EQ(metric.MetricValue(kOther), Variant(std::int16_t{0}));
  EXPECT_EQ(metric.MetricValue(static_cast<AQ_METRIC_TYPE>(0)), Variant(7));
}

TEST(MetricSummary, OrderAndText) {
  AQ_MetricSummary summary;
  EXPECT_EQ(summary.MetricTypeString(), "");
  for (const auto type : {AQ_METRIC_PNLT, AQ_METRIC_AWT, AQ_METRIC_PNLT}) summary.MetricType(type);
  EXPECT_EQ(summary.MetricTypeString(), "AWT, PNLT");
  for (const char* name : {"awt", "lgb", "PNLT, OA", "", " OA"}) summary.MetricTypeString(name);
  EXPECT_EQ(summary.MetricTypeString(), "AWT, PNLT, LGB");
  summary.MetricType(static_cast<AQ_METRIC_TYPE>(11));
  EXPECT_EQ(summary.MetricTypeString(), "AWT, PNLT, LGB");
  EXPECT_EQ(summary.MetricTypes()->Count(), 4);
  EXPECT_TRUE(summary.isMetric(AQ_METRIC_LGB));
  EXPECT_FALSE(summary.isMetric(AQ_METRIC_INTEG));
  EXPECT_EQ(summary.Copy()->MetricTypeString(), "AWT, PNLT, LGB");
}

}  // namespace
}  // namespace aq
