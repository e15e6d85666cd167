#include <aq/noise/noise_event.h>
#include <gtest/gtest.h>

#include <cmath>
#include <limits>

#include "tests/support/errors.h"

namespace aq {
namespace {

constexpr double kNone = std::numeric_limits<double>::quiet_NaN();
using Place = std::optional<std::size_t>;

NoiseEvent eventOf(const std::vector<double>& pnlt, const std::vector<double>& seconds = {0.5},
                   const std::vector<double>& corrections = {}) {
  return noiseEvent(pnlt, seconds, corrections);
}

/// The EPNL of these PNLT values, each lasting half a second.
double epnlOf(const std::vector<double>& pnlt) {
  double sum = 0;
  for (const double level : pnlt) sum += std::pow(10, level / 10) * 0.5;
  return 10 * std::log10(sum) - 10;
}

TEST(NoiseEvent, LimitsAreTheNearerRecords) {
  struct Case {
    std::vector<double> pnlt;
    std::size_t maximum;
    Place first, last;
  };
  const std::vector<Case> cases{
      {{80, 86, 90, 96, 90, 86, 80}, 3, 1, 5},          // records exactly at the limit
      {{80, 84, 87, 96, 96, 87.1, 84.7, 80}, 3, 2, 5},  // the record inside the limit is nearer
      {{80, 85, 88, 96, 88, 85, 80}, 3, 1, 5},          // the record outside is nearer
      {{80, 84.7, 87.3, 96, 87.3, 84.7, 80}, 3, 1, 5},  // both equally near
      {{80, 90, 80, 96, 80, 90, 80}, 3, 1, 5},  // a dip below the limit does not end the interval
      {{80, 86, 80, 96, 80, 86, 80}, 3, 2, 5},  // 86 is at the limit, neither above nor below it
      {{90, 96, 86}, 1, {}, 2},
      {{86, 96, 90}, 1, 0, {}},
      {{96}, 0, {}, {}},
      {{kNone, 92, 96, kNone}, 2, 1, 2},
      {{95.3, 85.3, 85.3}, 0, {}, 2},
      {{85.3, 95.3}, 1, 0, {}},
  };
  for (std::size_t i = 0; i < cases.size(); ++i) {
    SCOPED_TRACE(i);
    const auto& expected = cases[i];
    const auto event = eventOf(expected.pnlt);
    EXPECT_EQ(event.maximum, expected.maximum);
    EXPECT_EQ(event.first, expected.first);
    EXPECT_EQ(event.last, expected.last);
    EXPECT_EQ(event.pnltm, expected.pnlt[expected.maximum]);
  }
}

TEST(NoiseEvent, SumsFromLimitToLimit) {
  const auto event = eventOf({80, 86, 90, 96, 90, 86, 80});
  EXPECT_NEAR(event.epnl, epnlOf({86, 90, 96, 90, 86}), 1e-12);
  EXPECT_NEAR(event.duration, event.epnl - 96, 1e-12);
  EXPECT_EQ(event.bandSharing, 0);
  EXPECT_EQ(event.epnlWithBandSharing, event.epnl);
  EXPECT_NEAR(eventOf({90, kNone, 96, 75}).epnl, epnlOf({90, 96}), 1e-12);
  EXPECT_NEAR(eventOf({96, 90, 80}, {1, 0.5, 4}).epnl, epnlOf({96, 96, 90}), 1e-12);
  EXPECT_NEAR(eventOf({96}, {10}).epnl, 96, 1e-12);
}

TEST(NoiseEvent, BandSharingIsTheExcessOfTheMean) {
  const std::vector<double> pnlt{90, 91, 92, 96, 92, 91, 90};
  EXPECT_NEAR(eventOf(pnlt, {0.5}, {9, 2, 3, 1, 2, 4, 9}).bandSharing, 1.4, 1e-12);
  EXPECT_EQ(eventOf(pnlt, {0.5}, {9, 1, 1, 2, 1, 1, 9}).bandSharing, 0);
  EXPECT_NEAR(eventOf(pnlt, {0.5}, {9, kNone, 3, 1, 2, kNone, 9}).bandSharing, 1, 1e-12);
  EXPECT_NEAR(eventOf({96, 90, 80, 80}, {0.5}, {1, 2, 3, 99}).bandSharing, 1, 1e-12);
  EXPECT_NEAR(eventOf({80, 96}, {0.5}, {2, 1}).bandSharing, 0.5, 1e-12);
  EXPECT_EQ(eventOf({80, 96}, {0.5}, {2, kNone}).bandSharing, 0);
  const auto event = eventOf(pnlt, {0.5}, {9, 2, 3, 1, 2, 4, 9});
  EXPECT_NEAR(event.epnlWithBandSharing, event.epnl + 1.4, 1e-12);
  EXPECT_EQ(event.pnltm, 96);
}

TEST(NoiseEvent, SecondPeaks) {
  using Peaks = std::vector<std::size_t>;
  EXPECT_EQ(eventOf({80, 94, 93.9, 96, 95.9, 96, 80, 95, 80}).secondPeaks, (Peaks{1, 5, 7}));
  EXPECT_EQ(eventOf({80, 93.9, 80, 96, 80}).secondPeaks, Peaks());  // more than 2 dB down
  // These records are less than 0.1 dB above a neighbour.
  EXPECT_EQ(eventOf({80, 95, 94.95, 96, 90, 95, 95, 80}).secondPeaks, Peaks());
  EXPECT_EQ(eventOf({95, 90, 96, 90, 95}).secondPeaks,
            Peaks());  // the first and the last record have only one neighbour
  EXPECT_EQ(eventOf({80, 96, kNone, 95, kNone, 80}).secondPeaks, Peaks{3});
  EXPECT_EQ(eventOf({80, 95, 94.9, 96.99, 80}).secondPeaks, Peaks{1});
}

TEST(NoiseEvent, BadInput) {
  const std::vector<double> two{90, 96};
  EXPECT_ERROR(eventOf({}), InvalidArgument);
  EXPECT_ERROR(eventOf({kNone, kNone}), InvalidArgument);
  EXPECT_ERROR(eventOf(two, {}), InvalidArgument);
  EXPECT_ERROR(eventOf(two, {1, 1, 1}), InvalidArgument);
  EXPECT_ERROR(eventOf(two, {1}, {1}), InvalidArgument);
  const double infinity = std::numeric_limits<double>::infinity();
  for (const double step : {0.0, -1.0, kNone, infinity}) {
    EXPECT_ERROR(eventOf(two, {step}), InvalidValue);
    EXPECT_ERROR(eventOf(two, {0.5, step}), InvalidValue);
  }
  EXPECT_ERROR(eventOf({90, infinity}), InvalidValue);
}

}  // namespace
}  // namespace aq
