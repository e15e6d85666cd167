#include <aq/geometry/emt_rcv_table.h>
#include <aq/geometry/geometry_time_history.h>
#include <aq/geometry/position_time_history.h>
#include <aq/geometry/s_point_trk.h>
#include <gtest/gtest.h>

#include <cmath>
#include <random>
#include <tuple>

#include "tests/support/errors.h"

namespace aq {
namespace {

AQ_Time at(double seconds) {
  AQ_Time time;
  time.TODseconds(seconds);
  return time;
}

std::shared_ptr<AQ_Position> position(double seconds, double x = 0) {
  auto made = std::make_shared<AQ_Position>();
  made->Time()->TODseconds(seconds);
  made->X(x);
  return made;
}

/// The documented search, as a plain loop over the indices.
std::shared_ptr<AQ_Position> describedSearch(const AQ_PositionTimeHistory& history, double t) {
  const auto time = [&](std::int32_t place) {
    return history.Position(place)->Time()->TODseconds();
  };
  for (std::int32_t i = 2; i <= history.Count(); ++i) {
    if (!(time(i - 1) <= t && time(i) >= t)) continue;
    return history.Position(std::abs(time(i - 1) - t) < std::abs(time(i) - t) ? i - 1 : i);
  }
  return nullptr;
}

TEST(PositionTimeHistory, FindsWhatTheDescribedSearchFinds) {
  std::mt19937 random(13);
  for (int round = 0; round < 300; ++round) {
    AQ_PositionTimeHistory history;
    const int size = static_cast<int>(random() % 12);
    for (int i = 1; i <= size; ++i) {
      const bool ordered = round % 2 == 0;
      history.Position(i, position(ordered ? i / 2 : static_cast<int>(random() % 10)));
    }
    for (int change = 0; size != 0 && change < round % 4; ++change) {
      history.Position(1 + static_cast<int>(random() % static_cast<unsigned>(size)),
                       position(static_cast<int>(random() % 10)));
      history.Position(1)->Time()->TODseconds(static_cast<int>(random() % 10));
    }
    for (double t = -0.5; t < 11; t += 0.25) {
      ASSERT_EQ(history.PositionAt(at(t)), describedSearch(history, t)) << round << " " << t;
    }
  }
}

TEST(PositionTimeHistory, NearestIsTheLaterOfTwoEquallyNear) {
  AQ_PositionTimeHistory history;
  EXPECT_EQ(history.PositionAt(at(0)), nullptr);
  EXPECT_ERROR(history.GoodTime(at(0)), InvalidIndex);
  history.Position(1, position(10));
  EXPECT_EQ(history.PositionAt(at(10)), nullptr);
  EXPECT_TRUE(history.GoodTime(at(10)));
  history.Position(2, position(11));
  EXPECT_EQ(history.PositionAt(at(10.5)), history.Position(2));
  EXPECT_EQ(history.PositionAt(at(10.499999)), history.Position(1));
  EXPECT_EQ(history.PositionAt(at(11.000001)), nullptr);
  EXPECT_FALSE(history.GoodTime(at(9.9)));
  history.PositionAt(at(10))->X(5);
  EXPECT_EQ(history.Position(1)->X(), 5);
}

TEST(PositionTimeHistory, ReplacingMovesToTheEndAndACopyIsRenumbered) {
  AQ_PositionTimeHistory history;
  for (int i = 1; i <= 3; ++i) history.Position(i, position(i, i));
  history.Position(2, position(20, 20));
  EXPECT_EQ(history.Count(), 3);
  EXPECT_EQ(history.Position(3)->X(), 20);
  EXPECT_EQ(history.Position(2)->X(), 3);
  EXPECT_ERROR(history.Position(0), InvalidIndex);
  EXPECT_ERROR(history.Position(4), InvalidIndex);
  const auto copy = history.Copy();
  copy->Position(2, position(30, 30));  // number 2 of the copy was number 3
  EXPECT_EQ(copy->Position(1)->X(), 1);
  EXPECT_EQ(copy->Position(2)->X(), 20);
  EXPECT_EQ(copy->Position(3)->X(), 30);
  EXPECT_NE(copy->Position(1)->Time(), history.Position(1)->Time());
  EXPECT_EQ(copy->Position(1)->Time()->TODseconds(), 1);
}

TEST(PositionTimeHistory, MorePositionsThanCountHolds) {
  AQ_PositionTimeHistory history;
  const auto one = position(5);
  for (int i = 1; i <= 32768; ++i) history.Position(i, one);
  EXPECT_EQ(history.Position(32768), one);
  EXPECT_ERROR(history.Count(), Overflow);
  EXPECT_ERROR(history.PositionAt(at(5)), Overflow);
  EXPECT_ERROR(history.Copy(), Overflow);
}

TEST(Geometry, CopiesAllButTheDebugTime) {
  AQ_Geometry point;
  point.SRe = point.Tprope = point.debugTime = 5;
  point.THETAe = point.BETAe = 3;
  point.Pe()->Z(6);
  point.Te()->TODseconds(7);
  point.Tm()->TODseconds(8);
  const auto copy = point.Copy();
  point.Pe()->Z(0);
  EXPECT_EQ(copy->SRe, 5);
  EXPECT_EQ(copy->Tprope, 5);
  EXPECT_EQ(copy->THETAe, 3);
  EXPECT_EQ(copy->BETAe, 3);
  EXPECT_EQ(copy->debugTime, 0);
  EXPECT_EQ(copy->Pe()->Z(), 6);
  EXPECT_EQ(copy->Te()->TODseconds(), 7);
  EXPECT_EQ(copy->Tm()->TODseconds(), 8);
}

AQ_GeometryTimeHistory points(int count) {
  AQ_GeometryTimeHistory history;
  for (int i = 1; i <= count; ++i) history.Point(i, std::make_shared<AQ_Geometry>());
  return history;
}

TEST(GeometryTimeHistory, StampsHalfSeconds) {
  auto history = points(3);
  history.setTimeStamps(at(36000), AQ_MIDPT, at(35990), AQ_AMAX);
  EXPECT_EQ(history.Point(3)->Tm()->TODseconds(), 36001.25);
  EXPECT_EQ(history.Point(3)->Tm()->RelSeconds(), 11.25);
  EXPECT_EQ(history.TimeStampType(), AQ_MIDPT);
  history.TimeStampType(AQ_END);
  EXPECT_EQ(history.TimeStampType(), AQ_END);
  EXPECT_EQ(history.ReferenceType(), AQ_AMAX);
  EXPECT_EQ(history.Copy()->Count(), 3);
  EXPECT_EQ(history.Copy()->ReferenceTime()->TODseconds(), 0);  // only points are copied
  history.Point(5, std::make_shared<AQ_Geometry>());
  EXPECT_ERROR(history.setTimeStamps(at(10), AQ_END, at(0), AQ_HACK), InvalidArgument);
  EXPECT_EQ(history.Point(2)->Tm()->TODseconds(), 11);
  EXPECT_ERROR(history.Copy(), InvalidArgument);
}

TEST(SPointTrk, EachValueIsStoredSeparately) {
  AQ_SPointTrk point;
  const auto values = [&] {
    return std::tuple(point.YOFF(), point.PHI(), point.CYANG(), point.ALT(), point.GSPDKTS(),
                      point.FIRST(), point.LAST(), (point.MAX)());
  };
  const auto times = [&] { return std::tuple(point.TOH(), point.TMAX(), point.T1(), point.T2()); };
  EXPECT_EQ(values(), std::tuple(0, 0, 0, 0, 0, 0, 0, 0));
  EXPECT_EQ(times(), std::tuple(nullptr, nullptr, nullptr, nullptr));  // null until they are set
  const auto [a, b, c, d] = std::tuple(position(1), position(2), position(3), position(4));
  point.YOFF(1), point.PHI(2), point.CYANG(3), point.ALT(4), point.GSPDKTS(5);
  point.FIRST(6), point.LAST(7), (point.MAX)(8);
  point.TOH(a->Time()), point.TMAX(b->Time()), point.T1(c->Time()), point.T2(d->Time());
  EXPECT_EQ(values(), std::tuple(1, 2, 3, 4, 5, 6, 7, 8));
  EXPECT_EQ(times(), std::tuple(a->Time(), b->Time(), c->Time(), d->Time()));
}

TEST(GeometryTimeHistory, SettingRelativeTimesFailsAtTheFirstPoint) {
  const auto reference = std::make_shared<AQ_Time>();
  AQ_GeometryTimeHistory none;
  none.setRelTimes(reference, AQ_PMAX);
  none.Point(2, std::make_shared<AQ_Geometry>());
  EXPECT_ERROR(none.setRelTimes(reference, AQ_PMAX), InvalidArgument);
  auto history = points(1);
  EXPECT_ERROR(history.setRelTimes(reference, AQ_PMAX), MemberNotSupported);
  EXPECT_EQ(history.ReferenceTime(), reference);
  EXPECT_EQ(history.ReferenceType(), AQ_PMAX);
}

TEST(EmtRcvTable, RecordsAreAppendedAndColumnsAreSnapshots) {
  AQ_EmtRcvTable table;
  EXPECT_EQ(table.T()->Count(), 0);
  for (const double seconds : {1.0, 2.0}) {
    const auto record = std::make_shared<AQ_EmtRcvRecord>();
    record->T()->TODseconds(seconds);
    record->Tr()->TODseconds(seconds + 3);
    record->ACPosition()->X(seconds * 10);
    record->ACPosition()->Y(seconds * 100);
    record->ACPosition()->Z(seconds * 1000);
    table.Record(1, record);  // the index is ignored
  }
  const auto before = table.T();
  table.Record(1)->T()->TODseconds(9);
  EXPECT_EQ(before->Item(1), 1);
  EXPECT_EQ(table.T()->Item(1), 9);
  EXPECT_EQ(table.Tr()->Item(2), 5);
  EXPECT_EQ(table.X()->Item(2), 20);
  EXPECT_EQ(table.Y()->Item(2), 200);
  EXPECT_EQ(table.Z()->Item(2), 2000);
  EXPECT_EQ(table.Count(), 2);
  EXPECT_ERROR(table.Record(3), InvalidIndex);
}

}  // namespace
}  // namespace aq
