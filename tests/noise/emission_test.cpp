#include <aq/noise/emission_geometry.h>
#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <numbers>
#include <vector>

#include "tests/support/errors.h"

namespace aq {
namespace {

struct Fix {
  double seconds, x, y, z;
};

AQ_PositionTimeHistory pathOf(const std::vector<Fix>& fixes) {
  AQ_PositionTimeHistory positions;
  std::int32_t number = 0;
  for (const Fix& fix : fixes) {
    auto position = std::make_shared<AQ_Position>();
    position->Time()->TODseconds(fix.seconds);
    position->X(fix.x);
    position->Y(fix.y);
    position->Z(fix.z);
    positions.Position(++number, position);
  }
  return positions;
}

AQ_SpectralTimeHistory recordsAt(const std::vector<double>& seconds, double date = 0) {
  AQ_SpectralTimeHistory records;
  std::int16_t number = 0;
  for (const double each : seconds) {
    auto spectrum = std::make_shared<AQ_Spectrum>();
    spectrum->Time()->CurrentDate(date);
    spectrum->Time()->TODseconds(each);
    records.spectrum(++number, spectrum);
  }
  return records;
}

AQ_Position at(double x, double y, double z) {
  AQ_Position position;
  position.X(x);
  position.Y(y);
  position.Z(z);
  return position;
}

constexpr double kCelsius = 20;  // sound travels at 343.2 m/s

TEST(EmissionGeometry, SpeedOfSound) {
  EXPECT_NEAR(speedOfSound(20), 343.2, 1e-12);
  EXPECT_NEAR(speedOfSound(18.5), 342.3208, 1e-4);
  for (const double celsius : {-273.15, -300.0, std::nan(""), HUGE_VAL}) {
    EXPECT_ERROR(speedOfSound(celsius), InvalidValue);
  }
}

TEST(EmissionGeometry, SoundArrivesWhenTheRecordIsTaken) {
  // Flies past the microphone at 100 m/s, 300 m above it; only the last segment ends at the time of
  // a record.
  const std::vector<Fix> flight{
      {100, -1000, 0, 300}, {103.3, -670, 0, 300}, {104, -600, 0, 300}, {120, 1000, 0, 300}};
  auto records = recordsAt({102.5, 105, 110, 115, 120}, 45000);
  records.startTime()->TODseconds(102.5);
  records.TimeStampType(AQ_MIDPT);
  records.ReferenceType(AQ_PMAX);
  const auto geometry = emissionGeometry(pathOf(flight), at(0, 0, 0), records, kCelsius);
  EXPECT_FALSE(geometry->contains(1));  // emitted before the first position
  EXPECT_EQ(geometry->Count(), 4);
  EXPECT_EQ(geometry->startTime()->TODseconds(), 102.5);
  EXPECT_EQ(geometry->TimeStampType(), AQ_MIDPT);
  EXPECT_EQ(geometry->ReferenceType(), AQ_PMAX);
  for (std::int32_t record = 2; record <= 5; ++record) {
    SCOPED_TRACE(record);
    const auto point = geometry->Point(record);
    const double emitted = point->Te()->TODseconds();
    const double x = -1000 + 100 * (emitted - 100);
    EXPECT_NEAR(point->Pe()->X(), x, 1e-9);
    EXPECT_EQ(point->Pe()->Z(), 300);
    EXPECT_EQ(point->Pe()->Time()->TODseconds(), emitted);
    EXPECT_NEAR(point->SRe, std::hypot(x, 300), 1e-9);
    EXPECT_NEAR(point->SRe, 343.2 * point->Tprope, 1e-7);
    EXPECT_NEAR(emitted + point->Tprope, point->Tm()->TODseconds(), 1e-9);
    EXPECT_NEAR(point->THETAe, std::atan2(300, -x) * 180 / std::numbers::pi, 1e-4);
    EXPECT_EQ(point->BETAe, 0);
    EXPECT_EQ(point->Te()->CurrentDate(), 45000);
  }
}

TEST(EmissionGeometry, Angles) {
  struct Case {
    Fix from, to;
    AQ_Position microphone;
    double theta, beta;
  };
  const std::vector<Case> cases{
      {{0, 0, 0, 100}, {10, 0.001, 0, 100}, at(0, 100, 0), 90, 45},  // +x, microphone on the left
      {{0, 0, 0, 100}, {10, 0.001, 0, 100}, at(0, -100, 0), 90, -45},
      {{0, 0, 0, 100}, {10, 0, 0.001, 100}, at(100, 0, 0), 90, -45},  // +y, microphone on the right
      {{0, 0, 0, 100}, {10, -0.001, 0, 100}, at(0, 100, 0), 90, -45},
      {{0, 0, 0, 100}, {10, 0.001, 0, 100}, at(0, 100, 200), 90, 135},  // microphone above
      {{0, 0, 0, 100}, {10, 0.001, 0, 100}, at(100, 0, 100), 0, 0},     // microphone ahead
      {{0, 0, 0, 100}, {10, 0.001, 0, 100}, at(-100, 0, 100), 180, 0},
      {{0, 0, 0, 100}, {10, 0, 0, 100.001}, at(100, 50, 100), 90, 0},  // climbs straight up
      // Climbs at 45 degrees past a microphone to the side and below, so theta exceeds 90 degrees.
      {{0, 0, 0, 100},
       {10, 0.001, 0, 100.001},
       at(0, 100, 0),
       120,
       std::atan(std::sqrt(2)) / std::numbers::pi * 180},
      // Climbs at 45 degrees towards +x and +y, past a microphone on the right.
      {{0, 0, 0, 100},
       {10, 0.001, 0.001, 100 + 0.001 * std::numbers::sqrt2},
       at(60, 40, 0),
       std::acos((50 - 100 * std::sqrt(0.5)) / std::sqrt(15200)) / std::numbers::pi * 180,
       -std::atan(20 * std::sqrt(0.5) / (50 + 100 * std::sqrt(0.5))) / std::numbers::pi * 180},
  };
  for (std::size_t i = 0; i < cases.size(); ++i) {
    SCOPED_TRACE(i);
    const auto geometry = emissionGeometry(pathOf({cases[i].from, cases[i].to}),
                                           cases[i].microphone, recordsAt({5}), kCelsius);
    EXPECT_NEAR(geometry->Point(1)->THETAe, cases[i].theta, 1e-3);
    EXPECT_NEAR(geometry->Point(1)->BETAe, cases[i].beta, 1e-3);
  }
}

TEST(EmissionGeometry, WhereTheSourceHovers) {
  // Flies along +x until 10 s, hovers until 30 s, flies along +y, hovers from 40 s on.
  const auto path = pathOf(
      {{0, -100, 0, 50}, {10, 0, 0, 50}, {30, 0, 0, 50}, {40, 0, 100, 50}, {60, 0, 100, 50}});
  const auto geometry =
      emissionGeometry(path, at(0, 1, 50), recordsAt({15, 20.01, 25, 50}), kCelsius);
  EXPECT_NEAR(geometry->Point(1)->THETAe, 90, 1e-4);
  EXPECT_NEAR(geometry->Point(2)->THETAe, 0, 1e-4);
  EXPECT_NEAR(geometry->Point(3)->THETAe, 0, 1e-4);
  EXPECT_NEAR(geometry->Point(4)->THETAe, 180, 1e-4);
  EXPECT_NEAR(geometry->Point(3)->Tprope, 1 / 343.2, 1e-9);

  const auto passing = emissionGeometry(pathOf({{15, 0, 0, 0}, {30, 100, 0, 0}}), at(0, 0, 0),
                                        recordsAt({15}), kCelsius);
  EXPECT_EQ(passing->Point(1)->Te()->TODseconds(), 15);

  const auto still = pathOf({{0, 0, 0, 50}, {30, 0, 0, 50}});
  const auto hovering = emissionGeometry(still, at(0, 0, 50), recordsAt({15}), kCelsius);
  EXPECT_EQ(hovering->Point(1)->SRe, 0);
  EXPECT_TRUE(std::isnan(hovering->Point(1)->THETAe));
  EXPECT_TRUE(std::isnan(hovering->Point(1)->BETAe));
}

TEST(EmissionGeometry, AcrossMidnight) {
  const auto path = pathOf({{86399, 0, 0, 343.2}, {0.5, 1.5, 0, 343.2}, {4, 5, 0, 343.2}});
  auto records = recordsAt({86399.5, 0.25, 3}, 45000);
  records.startTime()->TODseconds(86399);
  records.ReferenceTime()->TODseconds(1.5);
  const auto geometry = emissionGeometry(path, at(0, 0, 0), records, kCelsius);
  EXPECT_EQ(geometry->startTime()->TODseconds(), 86399);
  EXPECT_EQ(geometry->ReferenceTime()->TODseconds(), 1.5);
  EXPECT_FALSE(geometry->contains(1));
  EXPECT_NEAR(geometry->Point(2)->Te()->TODseconds(), 86399.25, 1e-5);
  EXPECT_EQ(geometry->Point(2)->Te()->CurrentDate(), 44999);
  EXPECT_EQ(geometry->Point(2)->Tm()->TODseconds(), 0.25);
  EXPECT_NEAR(geometry->Point(2)->Tprope, 1, 1e-5);
  EXPECT_NEAR(geometry->Point(3)->Te()->TODseconds(), 2, 1e-4);
  EXPECT_EQ(geometry->Point(3)->Te()->CurrentDate(), 45000);
  const auto undated = emissionGeometry(path, at(0, 0, 0), recordsAt({0.25}), kCelsius);
  EXPECT_EQ(undated->Point(1)->Te()->CurrentDate(), 0);
}

TEST(EmissionGeometry, NothingIsExtrapolated) {
  const auto path = pathOf({{10, 0, 0, 343.2}, {11, 0, 0, 343.2}, {11, 0, 0, 343.2}});
  const auto geometry =
      emissionGeometry(path, at(0, 0, 0), recordsAt({10.99, 11, 12, 12.01}), kCelsius);
  EXPECT_FALSE(geometry->contains(1));
  EXPECT_TRUE(geometry->contains(2));
  EXPECT_EQ(geometry->Point(3)->Pe()->Z(), 343.2);  // emitted at 11 s, the time of two positions
  EXPECT_FALSE(geometry->contains(4));
  EXPECT_EQ(emissionGeometry(pathOf({}), at(0, 0, 0), recordsAt({1}), kCelsius)->Count(), 0);
  EXPECT_EQ(
      emissionGeometry(pathOf({{0, 0, 0, 0}}), at(0, 0, 0), recordsAt({0}), kCelsius)->Count(), 0);
}

TEST(EmissionGeometry, BadInput) {
  const auto path = pathOf({{10, 0, 0, 0}, {9, 1, 0, 0}});
  const double infinity = std::numeric_limits<double>::infinity();
  EXPECT_ERROR(emissionGeometry(path, at(0, 0, 0), recordsAt({1}), kCelsius), InvalidValue);
  EXPECT_ERROR(emissionGeometry(pathOf({{0, infinity, 0, 0}}), at(0, 0, 0), recordsAt({1}), 20),
               InvalidValue);
  EXPECT_ERROR(emissionGeometry(pathOf({}), at(0, std::nan(""), 0), recordsAt({1}), 20),
               InvalidValue);
  EXPECT_ERROR(emissionGeometry(pathOf({}), at(0, 0, 0), recordsAt({1}), -300), InvalidValue);
  AQ_SpectralTimeHistory lacking;
  lacking.spectrum(1, nullptr);
  EXPECT_ERROR(emissionGeometry(pathOf({}), at(0, 0, 0), lacking, 20), ObjectNotSet);
}

}  // namespace
}  // namespace aq
