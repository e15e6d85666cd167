#include <aq/noise/level_table.h>
#include <aq/noise/perceived_noise_level.h>
#include <aq/noise/weighted_level.h>
#include <gtest/gtest.h>

#include <cmath>
#include <limits>

#include "aq/noise/noy_table.h"
#include "aq/noise/weightings.h"
#include "tests/noise/spectra.h"
#include "tests/support/errors.h"

namespace aq {
namespace {

using test::rowOf;
using test::spectrumOf;

double square(double x) { return x * x; }

// The C-weighting of IEC 61672-1, Annex E, computed from its corner frequencies; low and high are
// the squares of the lower and the upper one.
double curveC(double f) {
  const double low = 1000;
  const double high = std::pow(10, 7.8);
  const double d = std::sqrt(0.5);
  const double b = (square(1000) + low * high / square(1000) - d * (low + high)) / (1 - d);
  const double root = std::sqrt(b * b - 4 * low * high);
  return 20 * std::log10(f * f / (f * f + (-b - root) / 2) / (f * f + (-b + root) / 2));
}

double curveA(double f) {
  const double corner = std::pow(10, 2.45);
  const double f2 = (3 - std::sqrt(5.0)) / 2 * corner;
  const double f3 = (3 + std::sqrt(5.0)) / 2 * corner;
  return curveC(f) + 10 * std::log10(square(f * f) / (f * f + f2 * f2) / (f * f + f3 * f3));
}

double curveD(double f) {
  const double f2 = f * f;
  const double h =
      (square(1037918.48 - f2) + 1080768.16 * f2) / (square(9837328 - f2) + 11723776 * f2);
  return 20 *
         std::log10(f / 6.8966888496476e-5 * std::sqrt(h / ((f2 + 79919.29) * (f2 + 1345600))));
}

TEST(WeightedLevel, WeightingsMatchTheirCurvesToATenth) {
  for (std::size_t i = 0; i < kWeightingA.size(); ++i) {
    const double f = std::pow(10, (kFirstWeightedBand + static_cast<double>(i)) / 10);
    EXPECT_NEAR(kWeightingA[i], curveA(f) - curveA(1000), 0.05001) << f;
    EXPECT_NEAR(kWeightingC[i], curveC(f) - curveC(1000), 0.05001) << f;
    EXPECT_NEAR(kWeightingD[i], curveD(f), 0.05001) << f;
  }
}

TEST(WeightedLevel, SumsWhatCounts) {
  const double nan = std::numeric_limits<double>::quiet_NaN();
  const auto adjusted = rowOf(29, {"M-", "MS"});
  const auto masked = rowOf(29, {"--", "F-", "M-"});
  struct Case {
    AQ_Spectrum spectrum;
    const AQ_MaskRow* masks;
    AQ_METRIC_TYPE weighting;
    std::optional<double> expected;
  };
  const std::vector<Case> cases{
      {spectrumOf(30, {60.0}), nullptr, AQ_METRIC_AWT, 60},
      {spectrumOf(17, {60.0}), nullptr, AQ_METRIC_AWT, 29.8},
      {spectrumOf(40, {60.0}), nullptr, AQ_METRIC_CWT, 55.6},
      {spectrumOf(34, {60.0}), nullptr, AQ_METRIC_DWT, 70.4},
      {spectrumOf(10, {60.0}), nullptr, AQ_METRIC_AWT, -10.4},
      {spectrumOf(43, {60.0}), nullptr, AQ_METRIC_AWT, 50.7},
      {spectrumOf(29, {60.0, 60.0}), nullptr, AQ_METRIC_OA, 60 + 10 * std::log10(2)},
      {spectrumOf(10, {70.0, 70.0}), nullptr, AQ_METRIC_AWT,
       70 + 10 * std::log10(std::pow(10, -7.04) + std::pow(10, -6.34))},
      {spectrumOf(9, {60.0}), nullptr, AQ_METRIC_AWT, {}},
      {spectrumOf(44, {60.0}), nullptr, AQ_METRIC_CWT, {}},
      {spectrumOf(9, {60.0, 9999.0}), nullptr, AQ_METRIC_OA, 60},
      {spectrumOf(43, {9999.0, 60.0}), nullptr, AQ_METRIC_OA, 60},
      {spectrumOf(9, {90.0, 60.0}), nullptr, AQ_METRIC_AWT, -10.4},
      {spectrumOf(43, {60.0, 90.0}), nullptr, AQ_METRIC_AWT, 50.7},
      {spectrumOf(29, {50.0, 60.0, 55.0}), &adjusted, AQ_METRIC_OA,
       10 * std::log10(1e6 + std::pow(10, 5.5))},
      {spectrumOf(29, {60.0, 70.0, 70.0}), &masked, AQ_METRIC_OA, 60},
      {spectrumOf(30, {70.0, 60.0}), &masked, AQ_METRIC_AWT, {}},
      {spectrumOf(30, {60.0, nan, "60", std::int32_t{9999}, Variant()}), nullptr, AQ_METRIC_OA, 60},
      {spectrumOf(30, {60.0f, std::numeric_limits<double>::infinity()}), nullptr, AQ_METRIC_AWT,
       60},
      {spectrumOf(30, {-20.004, std::int16_t{200}}), nullptr, AQ_METRIC_OA, 200},
      {spectrumOf(30, {5000.0, 60.0}), nullptr, AQ_METRIC_AWT, 5000},
      {spectrumOf(29, {-6000.0, 9999.0}), nullptr, AQ_METRIC_AWT, -6000.8},
      {AQ_Spectrum(), nullptr, AQ_METRIC_OA, {}}};
  for (std::size_t i = 0; i < cases.size(); ++i) {
    SCOPED_TRACE(i);
    const auto found = weightedLevel(cases[i].spectrum, cases[i].weighting, cases[i].masks);
    ASSERT_EQ(found.has_value(), cases[i].expected.has_value());
    if (found) {
      EXPECT_NEAR(*found, *cases[i].expected, 1e-9);
    }
  }
  EXPECT_ERROR(weightedLevel(cases[0].spectrum, AQ_METRIC_PNL), InvalidArgument);
  EXPECT_ERROR(weightedLevel(cases[0].spectrum, AQ_METRIC_TYPE{}), InvalidArgument);
}

TEST(WeightedLevel, ALevelInHundredthsIsUnchanged) {
  for (const double level :
       {-327.67, -40.01, -0.01, 0.0, 2.55, 2.56, 84.37, 128.0, 128.01, 327.67}) {
    EXPECT_NEAR(*weightedLevel(spectrumOf(30, {level}), AQ_METRIC_OA), level, 1e-10);
  }
}

TEST(EnergySum, OfLevelsThatCount) {
  const double nan = std::numeric_limits<double>::quiet_NaN();
  EXPECT_NEAR(*energySum(std::array{60.0, nan, 9999.0, 50.0}), 10 * std::log10(1.1e6), 1e-12);
  EXPECT_EQ(energySum(std::array{nan, 9999.0}), std::nullopt);
}

TEST(LevelTable, HasCodesUpTo128Decibels) {
  for (std::size_t count = 1; count <= 9; ++count) {
    for (std::size_t place = 0; place < count; ++place) {
      std::vector<LevelCode> codes(count, 6000);
      for (const int code : {0, 1, 6001, 12799, 12800}) {
        codes[place] = static_cast<LevelCode>(code);
        EXPECT_TRUE(areInTable(codes)) << code << " of " << count;
      }
      for (const int code : {-32768, -32767, -1, 12801, 20000, 32767}) {
        codes[place] = static_cast<LevelCode>(code);
        EXPECT_FALSE(areInTable(codes)) << code << " of " << count;
      }
    }
  }
}

/// Noys of a band, from the perceived noise level of that band alone.
double noys(std::int16_t band, double level) {
  const double pnl = perceivedNoiseLevel(test::spectrumOf(band, {level}));
  return pnl == 0 ? 0 : std::pow(2, (pnl - 40) / 10);
}

TEST(PerceivedNoise, PiecesMeet) {
  std::int16_t number = kFirstNoyBand;
  for (const NoyBand& band : kNoyBands) {
    SCOPED_TRACE(number);
    for (const double joint : {band.splA, band.splB, band.splE}) {
      if (std::isfinite(joint)) {
        EXPECT_NEAR(noys(number, joint) / noys(number, joint - 1e-9), 1, 1e-3) << joint;
      }
    }
    EXPECT_NEAR(noys(number, band.splD), 0.1, 1e-12);
    EXPECT_NEAR(noys(number, band.splE), 0.3, 1e-12);
    EXPECT_NEAR(noys(number, band.splB), 1, 1e-12);
    EXPECT_EQ(noys(number, band.splD - 0.01), 0);
    EXPECT_GT(noys(number, 120), noys(number, 119));
    ++number;
  }
}

TEST(PerceivedNoise, SumsNoys) {
  const auto masked = rowOf(30, {"--", "A-", "AC"});
  const std::vector<Variant> levels{40.0, 50.0, 48.0};  // 40 dB is 1 noy in band 30
  const double first = std::pow(10, 0.030103 * 10);
  const double high = std::pow(10, 0.030103 * 12);
  const double higher = std::pow(10, 0.02996 * 14);
  const auto level = [](double n) { return 40 + 10 * std::log2(n); };
  EXPECT_NEAR(perceivedNoiseLevel(spectrumOf(30, {50.0})), level(first), 1e-9);
  EXPECT_NEAR(perceivedNoiseLevel(spectrumOf(30, levels)),
              level(0.85 * higher + 0.15 * (1 + high + higher)), 1e-9);
  EXPECT_NEAR(perceivedNoiseLevel(spectrumOf(30, levels), &masked),
              level(0.85 * higher + 0.15 * (1 + higher)), 1e-9);
  EXPECT_EQ(perceivedNoiseLevel(spectrumOf(15, {90.0, 90.0})), 0);
  EXPECT_EQ(perceivedNoiseLevel(spectrumOf(41, {90.0})), 0);
  EXPECT_EQ(perceivedNoiseLevel(spectrumOf(30, {9999.0, -20.0})), 0);
  EXPECT_NEAR(perceivedNoiseLevel(spectrumOf(17, {200.0})), level(std::pow(10, 0.030103 * 148)),
              1e-9);
  EXPECT_ERROR(perceivedNoiseLevel(spectrumOf(30, {20000.0})), Overflow);
  AQ_Spectrum shortened;  // the second call takes away its level in band 40
  shortened.assignLevels(17, std::vector<double>(24, 90));
  shortened.assignLevels(17, std::vector<double>(23, 60));
  EXPECT_EQ(perceivedNoiseLevel(shortened),
            perceivedNoiseLevel(spectrumOf(17, std::vector<Variant>(23, 60.0))));
}

}  // namespace
}  // namespace aq
