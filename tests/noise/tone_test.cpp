#include <aq/noise/tone_correction.h>
#include <gtest/gtest.h>

#include <cmath>

#include "tests/noise/spectra.h"

namespace aq {
namespace {

using test::rowOf;
using test::spectrumOf;

std::vector<Variant> variants(const std::vector<double>& levels) {
  return {levels.begin(), levels.end()};
}

// The turbofan spectrum in the Environmental Technical Manual, table 3-7, 80 Hz to 10 kHz.
const std::vector<double> kTurbofan{70, 62, 70, 80, 82, 83, 76, 80, 80, 79, 78,
                                    80, 78, 76, 79, 85, 79, 78, 71, 60, 54, 45};

TEST(ToneCorrection, WorkedExampleStepByStep) {
  const auto result = toneCorrection(spectrumOf(19, variants(kTurbofan)));
  EXPECT_NEAR(result.correction, 2, 1e-12);
  EXPECT_EQ(result.band, 34);
  EXPECT_EQ(result.lastBand, 40);
  const std::vector<double> adjusted{70, 62, 71, 80, 82, 79, 76, 78, 80, 79, 78,
                                     80, 78, 76, 79, 79, 79, 78, 71, 60, 54, 45};
  const std::vector<double> thirds{
      // the background levels
      70, 67 + 2.0 / 3, 71,           77 + 2.0 / 3, 80 + 1.0 / 3, 79,           77 + 2.0 / 3,
      78, 79,           79,           79,           78 + 2.0 / 3, 78,           77 + 2.0 / 3,
      78, 79,           78 + 2.0 / 3, 76,           69 + 2.0 / 3, 61 + 2.0 / 3, 53,
      45};
  const std::vector<double> corrections{0, 0,       0, 5.0 / 18, 1.0 / 18, 2.0 / 3, 0, 1.0 / 6,
                                        0, 0,       0, 0,        0,        0,       0, 2,
                                        0, 1.0 / 3, 0, 0,        0,        0};
  ASSERT_EQ(result.rows.size(), 22U);
  for (std::size_t i = 0; i < 22; ++i) {
    const ToneStep& row = result.rows[i];
    SCOPED_TRACE(row.band);
    EXPECT_EQ(row.band, 19 + static_cast<int>(i));
    EXPECT_EQ(row.level, kTurbofan[i]);
    EXPECT_EQ(row.slope.has_value(), i > 0);
    if (i > 0) {
      EXPECT_EQ(row.slope, kTurbofan[i] - kTurbofan[i - 1]);
    }
    EXPECT_EQ(row.levelMarked, adjusted[i] != kTurbofan[i]);
    EXPECT_EQ(row.adjusted, adjusted[i]);
    EXPECT_EQ(row.adjustedSlope, i > 0 ? adjusted[i] - adjusted[i - 1] : -8);
    EXPECT_EQ(row.meanSlope.has_value(), i < 21);
    if (i < 21) {
      EXPECT_NEAR(*row.meanSlope, thirds[i + 1] - thirds[i], 1e-12);
    }
    EXPECT_NEAR(*row.background, thirds[i], 1e-12);
    EXPECT_NEAR(*row.difference, kTurbofan[i] - thirds[i], 1e-12);
    EXPECT_NEAR(*row.correction, corrections[i], 1e-12);
    const double change = i < 2 ? 0 : std::abs(*row.slope - *result.rows[i - 1].slope);
    EXPECT_EQ(row.slopeMarked, change > 5);
  }
}

TEST(ToneCorrection, LastBand) {
  auto levels = variants(kTurbofan);
  const auto firstMasked = rowOf(19, {"M-"});
  const auto above = rowOf(36, {"M-", "--", "M-"});
  EXPECT_EQ(toneCorrection(spectrumOf(19, levels), &firstMasked).lastBand, 18);
  EXPECT_TRUE(toneCorrection(spectrumOf(19, levels), &firstMasked).rows.empty());
  const auto ends = toneCorrection(spectrumOf(17, {0.0, 0.0}));
  EXPECT_EQ(ends.lastBand, 18);
  EXPECT_EQ(ends.correction, 0);

  const auto masked = toneCorrection(spectrumOf(19, levels), &above);
  EXPECT_EQ(masked.lastBand, 35);
  EXPECT_EQ(masked.rows.back().band, 35);
  EXPECT_EQ(masked.rows.back().meanSlope, std::nullopt);
  // The spectrum ends at 3.15 kHz, so the slope of 0 there continues, and the background is 79.
  EXPECT_NEAR(*masked.rows.back().background, 79, 1e-12);
  EXPECT_NEAR(masked.correction, 2, 1e-12);

  levels[2] = 9999.0;
  const auto two = toneCorrection(spectrumOf(19, levels));
  EXPECT_EQ(two.lastBand, 20);
  EXPECT_EQ(two.correction, 0);
  EXPECT_EQ(two.rows[0].adjustedSlope, -8);
  const auto one = toneCorrection(spectrumOf(19, {70.0}));
  EXPECT_EQ(one.rows.at(0).adjustedSlope, std::nullopt);
  EXPECT_EQ(one.rows.at(0).background, 70);
}

TEST(ToneCorrection, AMarkedLastLevelContinuesTheSlopeBeforeIt) {
  const auto result = toneCorrection(spectrumOf(19, {60.0, 61.0, 62.0, 82.0}));
  EXPECT_TRUE(result.rows.back().levelMarked);
  EXPECT_EQ(result.rows.back().adjusted, 63);
  EXPECT_NEAR(*result.rows.back().difference, 19, 1e-12);
  EXPECT_EQ(result.band, 22);
}

TEST(ToneCorrection, ALevelAfterARiseIsMarkedIfTheNextSlopeIsZero) {
  const auto result = toneCorrection(spectrumOf(19, {60.0, 70.0, 70.0, 70.0}));
  EXPECT_TRUE(result.rows[1].levelMarked);
  EXPECT_FALSE(result.rows[2].levelMarked);
}

TEST(ToneCorrection, FromDifference) {
  // A level more than 5 dB above a flat spectrum is just as far above its background.
  const auto toneOf = [](std::size_t at, double height) {
    std::vector<double> levels(22, 60);
    levels[at] += height;
    return toneCorrection(spectrumOf(19, variants(levels)));
  };
  for (const std::size_t at : {7U, 19U, 8U, 18U}) {  // 400, 6300, 500 and 5000 Hz
    SCOPED_TRACE(at);
    const double twice = at == 8 || at == 18 ? 2 : 1;
    for (const auto& [height, correction] : std::vector<std::pair<double, double>>{
             {5.01, 5.01 / 6}, {18, 3}, {19.9, 19.9 / 6}, {20, 20 / 6.0}, {200, 20 / 6.0}}) {
      EXPECT_NEAR(toneOf(at, height).correction, twice * correction, 1e-9) << height;
      EXPECT_EQ(toneOf(at, height).band, 19 + static_cast<int>(at));
    }
    // A level that is not marked raises its own background by a third of its height.
    EXPECT_NEAR(toneOf(at, 2.4).correction, twice * (1.6 / 3 - 0.5), 1e-9);
    EXPECT_EQ(toneOf(at, 2).correction, 0);
    EXPECT_EQ(toneOf(at, 2).band, 0);
  }
  std::vector<double> equal(22, 60);
  equal[3] = equal[12] = equal[16] = 90;
  EXPECT_EQ(toneCorrection(spectrumOf(19, variants(equal))).band, 31);
}

}  // namespace
}  // namespace aq
