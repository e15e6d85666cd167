#include <aq/geometry/cut_geometry.h>
#include <aq/masking/cut_map.h>
#include <aq/noise/history_metrics.h>
#include <aq/noise/record_geometry.h>
#include <aq/noise/records_down.h>
#include <aq/spectral/join_histories.h>
#include <gtest/gtest.h>

#include <cmath>

#include "tests/support/errors.h"

namespace aq {
namespace {

/// A history whose levels rise and then fall by about a decibel per record; numbered from `low`.
std::shared_ptr<AQ_SpectralTimeHistory> flyOver(double start, std::int16_t low = 1,
                                                std::int16_t count = 61) {
  auto history = std::make_shared<AQ_SpectralTimeHistory>();
  for (std::int16_t i = 0; i < count; ++i) {
    auto spectrum = std::make_shared<AQ_Spectrum>();
    const double level = 90 - std::abs(i - count / 2) - 0.3 * (i % 2);
    spectrum->assignLevels(17, std::vector<double>(24, level));
    history->spectrum(static_cast<std::int16_t>(low + i), spectrum);
  }
  AQ_Time begin;
  begin.TODseconds(start - (low - 1) * 0.5);
  AQ_Time reference;
  reference.TODseconds(36000);
  history->setTimeStamps(begin, AQ_MIDPT, reference, AQ_OVERHEAD);
  history->startTime()->TODseconds(start);
  return history;
}

double stampOf(const AQ_SpectralTimeHistory& history, std::int16_t record) {
  return history.spectrum(record)->timeValue().TODseconds();
}

TEST(Parts, ACutToTheEventHasTheSameEvent) {
  const auto whole = flyOver(86390);
  for (const double decibels : {10.0, 10.2, 4.0}) {
    const RecordRange range = recordsDown(*whole, nullptr, decibels);
    const auto part = cutHistory(*whole, range, true);
    EXPECT_EQ(recordsDown(*part, nullptr, decibels).first, 1);
    EXPECT_EQ(recordsDown(*part, nullptr, decibels).last, part->HiRec());
    if (decibels < 10) continue;
    const auto before = historyMetrics(*whole).event;
    const auto after = historyMetrics(*part).event;
    EXPECT_EQ(after->epnl, before->epnl);
    EXPECT_EQ(*after->first + static_cast<std::size_t>(range.first) - 1, *before->first);
    EXPECT_EQ(*after->last + static_cast<std::size_t>(range.first) - 1, *before->last);
  }
  const HistoryMetrics metrics = historyMetrics(*whole);
  const double atLimit = metrics.records[40].value(AQ_METRIC_PNLT);
  EXPECT_EQ(recordsDown(*whole, nullptr, metrics.event->pnltm - atLimit).last, 42);
  EXPECT_ERROR(recordsDown(*whole, nullptr, 0), InvalidArgument);
  EXPECT_EQ(recordsDown(*whole, nullptr, 99).first, 1);
  EXPECT_EQ(recordsDown(*whole, nullptr, 99).last, 61);
  EXPECT_ERROR(recordsDown(AQ_SpectralTimeHistory()), InvalidArgument);
}

TEST(Parts, StampsStayAndTheStartMoves) {
  const auto whole = flyOver(86390, 5);
  whole->spectrum(5)->Level(7);
  const RecordRange range = recordsBetween(*whole, 86395.25, 1.25);  // across midnight
  EXPECT_EQ(range.first, 15);
  EXPECT_EQ(range.last, 27);
  const auto own = cutHistory(*whole, range, false);
  EXPECT_EQ(own->LoRec(), 15);
  const auto part = cutHistory(*whole, {26, 99}, true);
  EXPECT_EQ(part->LoRec(), 1);
  EXPECT_EQ(part->HiRec(), 40);
  EXPECT_EQ(stampOf(*part, 1), stampOf(*whole, 26));
  EXPECT_EQ(part->startTime()->TODseconds(), 0.5);
  EXPECT_EQ(part->ReferenceTime()->TODseconds(), 36000);
  EXPECT_EQ(part->sTimeStampType() + part->sReferenceTimeType(), "MIDPTOVERHEAD");
  EXPECT_ERROR(cutHistory(*whole, {90, 99}, true), InvalidArgument);
  EXPECT_ERROR(recordsBetween(*whole, 40000, 40001), InvalidArgument);
}

TEST(Parts, PiecesJoinAndGapsAreFilled) {
  const auto whole = flyOver(86390);
  const auto a = cutHistory(*whole, {1, 20}, true);
  const auto b = cutHistory(*whole, {24, 61}, true);
  EXPECT_EQ(recordsMissing(*a, *b), 3);
  const auto joined = joinHistories(*a, *b, true);
  EXPECT_EQ(joined->HiRec(), 61);
  EXPECT_EQ(joined->spectrum(22)->SPL(40), Variant(9999.0));
  for (std::int16_t record = 1; record <= 61; ++record) {
    EXPECT_NEAR(stampOf(*joined, record), stampOf(*whole, record), 0.005);
    EXPECT_NEAR(joined->spectrum(record)->timeValue().RelSeconds(),
                whole->spectrum(record)->timeValue().RelSeconds(), 0.005);
  }
  EXPECT_EQ(joined->spectrum(61), whole->spectrum(61));
  EXPECT_EQ(joinHistories(*a, *cutHistory(*whole, {21, 61}, false), false)->HiRec(), 61);
  EXPECT_ERROR(joinHistories(*a, *b, false), InvalidArgument);
  for (const auto& piece : {a, b}) {
    for (const auto& [number, spectrum] : *piece) {
      auto bare = std::make_shared<AQ_Spectrum>();
      bare->Time(spectrum->Time());
      piece->spectrum(static_cast<std::int16_t>(number), bare);
    }
  }
  EXPECT_EQ(joinHistories(*a, *b, true)->spectrum(22)->HighBand(), -1);
}

TEST(Parts, RejectsPiecesOfOtherMeasurements) {
  const auto a = flyOver(36000, 1, 20);
  const auto refuses = [&](const auto& change) {
    const auto b = flyOver(36010, 1, 20);
    EXPECT_EQ(recordsMissing(*a, *b), 0);
    change(*b);
    EXPECT_ERROR(recordsMissing(*a, *b), InvalidArgument);
  };
  using History = AQ_SpectralTimeHistory;
  refuses([](History& b) { b.AverageMethod(AQ_TRUSLO); });
  refuses([](History& b) { b.TimeStampType(AQ_START); });
  refuses([](History& b) { b.ReferenceType(AQ_HACK); });
  refuses([](History& b) { b.ReferenceTime()->TODseconds(1); });
  refuses([](History& b) {  // equal as text
    b.ReferenceTime()->TODseconds(b.ReferenceTime()->TODseconds() + 1e-6);
  });
  refuses([](History& b) { b.ReferenceTime()->CurrentDate(40000); });
  refuses([](History& b) { b.spectrum(7)->SPL(41, 1.0); });
  refuses([](History& b) { b = History(); });
  refuses([](History& b) { b.spectrum(20)->Time()->TODseconds(36030); });
  for (const double seconds : {-0.2, 0.2}) {
    refuses([seconds](History& b) {
      for (const auto& [number, spectrum] : b) {
        spectrum->Time()->TODseconds(spectrum->Time()->TODseconds() + seconds);
      }
    });
  }
  EXPECT_ERROR(recordsMissing(*flyOver(36010), *a), InvalidArgument);
  EXPECT_ERROR(recordsMissing(*a, *flyOver(36010 + 20000)), Overflow);
  EXPECT_ERROR(joinHistories(*a, *flyOver(36010 + 16300, 1, 200), true), Overflow);
}

TEST(Parts, MapsAndGeometriesFollow) {
  AQ_MaskMap map;
  AQ_GeometryTimeHistory geometry;
  for (std::int16_t record = 1; record <= 5; ++record) {
    auto row = std::make_shared<AQ_MaskRow>();
    row->store(17, AQ_Mask());
    row->LGB(record);
    map.Row(record, row);
    auto point = std::make_shared<AQ_Geometry>();
    point->Tm()->TODseconds(100.0 + record);
    geometry.Point(record, point);
  }
  geometry.startTime()->TODseconds(90);
  const auto part = cutMap(map, 3, 5);
  EXPECT_EQ(part->Count(), 3);
  EXPECT_EQ(part->Row(1)->LGB(), 3);
  EXPECT_ERROR(cutMap(map, 3, 6), InvalidArgument);
  const auto joined = joinMaps(map, *part, 2);
  EXPECT_EQ(joined->Count(), 10);
  EXPECT_EQ(joined->Row(7)->LGB(), 0);
  EXPECT_TRUE(joined->Row(7)->contains(17));
  EXPECT_EQ(joined->Row(8)->LGB(), 3);
  part->Row(2)->store(18, AQ_Mask());
  EXPECT_ERROR(joinMaps(map, *part, 0), InvalidArgument);
  EXPECT_ERROR(joinMaps(map, map, 32760), Overflow);
  const auto points = cutGeometry(geometry, 2, 4);
  EXPECT_EQ(points->Count(), 3);
  EXPECT_EQ(points->Point(1), geometry.Point(2));
  EXPECT_EQ(points->startTime()->TODseconds(), 91);
  EXPECT_ERROR(cutGeometry(geometry, 5, 6), InvalidArgument);

  const auto after = [&geometry](const auto& change) {
    const auto next = cutGeometry(geometry, 1, 5);
    for (std::int16_t record = 1; record <= 5; ++record) {
      next->Point(record, next->Point(record)->Copy());
      next->Point(record)->Tm()->TODseconds(200.0 + record);
    }
    change(*next);
    return next;
  };
  using Geometry = AQ_GeometryTimeHistory;
  const auto both = joinGeometries(geometry, *after([](Geometry&) {}));
  EXPECT_EQ(both->Count(), 10);
  EXPECT_EQ(both->Point(6)->Tm()->TODseconds(), 201);
  EXPECT_EQ(both->startTime()->TODseconds(), 90);
  const auto refuses = [&](const auto& change) {
    EXPECT_ERROR(joinGeometries(geometry, *after(change)), InvalidArgument);
  };
  refuses([](Geometry& next) { next.TimeStampType(AQ_END); });
  refuses([](Geometry& next) { next.ReferenceType(AQ_HACK); });
  refuses([](Geometry& next) { next.ReferenceTime()->TODseconds(7); });
  refuses([](Geometry& next) { next.Point(1)->Tm()->TODseconds(105); });
  refuses([](Geometry& next) { next = Geometry(); });
  Geometry none;
  EXPECT_ERROR(joinGeometries(none, geometry), InvalidArgument);
}

TEST(Parts, PointsOfRecordsAreFoundByTheirTime) {
  const auto history = flyOver(86390, 5);
  AQ_GeometryTimeHistory geometry;
  for (std::int16_t record = 7; record <= 9; ++record) {
    auto point = std::make_shared<AQ_Geometry>();
    point->Tm()->TODseconds(stampOf(*history, record) + 0.005);
    geometry.Point(record + 10, point);
  }
  const auto points = geometryOf(geometry, *history, {8, 9});
  EXPECT_EQ(points->Count(), 2);
  EXPECT_EQ(points->Point(1), geometry.Point(18));
  for (const RecordRange& range : {RecordRange{6, 8}, RecordRange{8, 10}, RecordRange{80, 99}}) {
    EXPECT_ERROR(geometryOf(geometry, *history, range), InvalidArgument);
  }
  geometry.Point(18)->Tm()->TODseconds(0);
  EXPECT_ERROR(geometryOf(geometry, *history, {7, 9}), InvalidArgument);
}

}  // namespace
}  // namespace aq
