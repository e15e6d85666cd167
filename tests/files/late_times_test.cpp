#include <aq/files/late_times.h>
#include <gtest/gtest.h>

#include <array>

namespace aq {
namespace {

constexpr double kLate = 45296.996;  // is written as 12:34:56

std::shared_ptr<AQ_Time> timeAt(double seconds) {
  auto time = std::make_shared<AQ_Time>();
  time->assignSeconds(seconds, 1.25);
  return time;
}

TEST(LateTimes, OnlyAFractionThatRoundsToASecondIsLate) {
  struct Row {
    double seconds;
    double rounded;
  };
  for (const auto& [seconds, rounded] :
       std::array{Row{kLate, 45297}, Row{45296.994, 45296.994}, Row{45296.5, 45296.5},
                  Row{45297, 45297}, Row{5296.9996, 5297}, Row{5296.999, 5296.999},
                  Row{86399.999, 86400}, Row{-0.001, -0.001}, Row{86400.999, 86400.999}}) {
    const auto time = timeAt(seconds);
    EXPECT_EQ(roundLateTime(*time), seconds != rounded) << seconds;
    EXPECT_EQ(time->TODseconds(), rounded);
    EXPECT_EQ(time->RelSeconds(), 1.25);
  }
}

/// Expects `model`, in which only `time` is late, to have late times until they are rounded.
template <class Model>
void expectRounded(Model& model, AQ_Time& time) {
  time.assignSeconds(45296.5, 0);
  EXPECT_FALSE(hasLateTimes(model));
  EXPECT_FALSE(roundLateTimes(model));
  time.assignSeconds(kLate, 0);
  EXPECT_TRUE(hasLateTimes(model));
  EXPECT_TRUE(roundLateTimes(model));
  EXPECT_EQ(time.TODseconds(), 45297);
}

TEST(LateTimes, EachModelIsSearchedAndRounded) {
  AQ_PositionTimeHistory positions;
  positions.Position(1, nullptr);
  positions.Position(2, std::make_shared<AQ_Position>());
  expectRounded(positions, *positions.Position(2)->Time());

  AQ_GeometryTimeHistory geometry;
  geometry.Point(1, nullptr);
  geometry.Point(2, std::make_shared<AQ_Geometry>());
  expectRounded(geometry, *geometry.Point(2)->Tm());
  expectRounded(geometry, *geometry.Point(2)->Te());

  AQ_SpectralTimeHistory history;
  history.spectrum(1, nullptr);
  history.spectrum(2, std::make_shared<AQ_Spectrum>());
  expectRounded(history, *history.spectrum(2)->Time());
  expectRounded(history, *history.startTime());
  expectRounded(history, *history.ReferenceTime());
}

}  // namespace
}  // namespace aq
