#include <aq/core/platform.h>
#include <aq/core/time.h>
#include <aq/text/date_text.h>
#include <gtest/gtest.h>

#include <limits>

#include "tests/support/errors.h"

namespace aq {
namespace {

AQ_Time at(const char* time) {
  AQ_Time result;
  result.TODstring(time);
  return result;
}

AQ_Time on(const char* date, double seconds) {
  AQ_Time result;
  result.CurrentDate(dateFrom(date));
  result.TODseconds(seconds);
  return result;
}

TEST(Time, WrapsPastMidnightByOneDay) {
  struct Row {
    double set, timeOfDay, date;
  };
  for (const Row& row : {Row{86400, 86400, 0}, Row{86400.25, 0.25, 1}, Row{200000, 27200, 1},
                         Row{-5, -5, 0}, Row{172800.5, 0.5, 1}}) {
    AQ_Time time;
    time.TODseconds(row.set);
    EXPECT_EQ(time.TODseconds(), row.timeOfDay);
    EXPECT_EQ(time.CurrentDate(), row.date);
  }
}

TEST(Time, ReadsText) {
  const std::pair<const char*, double> rows[] = {{"01:02:03", 3723},
                                                 {"1:2:3", 3723},
                                                 {"12:00:00 AM", 0},
                                                 {"12:00:00 PM", 86400},
                                                 {"12:30:00 pm", 88200},
                                                 {"11:30:45.5 AM", 41445.5},
                                                 {"::", 0},
                                                 {"x:1:2", 62},
                                                 {"10:00:00:99", 36000},
                                                 {" 1 0:00:05 ", 36005},
                                                 {"0:0:12.345", static_cast<double>(12.345F)}};
  for (const auto& [text, seconds] : rows) EXPECT_EQ(at(text).TODseconds(), seconds) << text;
  AQ_Time time = at("10:00:00");
  for (const char* text : {"10:30", "", "103000"})
    EXPECT_ERROR(time.TODstring(text), InvalidArgument);
  EXPECT_ERROR(time.TODstring("1e39:00:00"), Overflow);
  EXPECT_EQ(time.TODseconds(), 36000);
}

TEST(Time, WritesText) {
  const std::pair<double, const char*> rows[] = {
      {0, "00:00:00"},           {45296, "12:34:56"},      {45296.5, "12:34:56.5"},
      {0.5, "00:00:00.5"},       {45296.996, "12:34:56"},  {86400, "00:00:00"},
      {86399.99, "23:59:59.99"}, {1e-5, "00:00:00.00001"}, {3599.9997, "00:59:59"}};
  for (const auto& [seconds, text] : rows) {
    AQ_Time time;
    time.TODseconds(seconds);
    EXPECT_EQ(time.TODstring(), text) << seconds;
  }
  EXPECT_EQ(at("12:30:00 PM").TODstring(), "00:30:00");
  AQ_Time time;
  time.TODnumbers(25, 0, 0);
  EXPECT_ERROR(time.TODstring(), InvalidValue);
  time.TODseconds(-1);
  EXPECT_ERROR(time.TODstring(), InvalidValue);
}

TEST(Time, NumbersPassThroughSinglePrecision) {
  AQ_Time time;
  time.TODnumbers("1", 2, 12.345);
  EXPECT_EQ(time.TODseconds(), 3720 + static_cast<double>(12.345F));
  EXPECT_ERROR(time.TODnumbers(5, "x", 0), TypeMismatch);
  EXPECT_EQ(time.TODseconds(), 3720 + static_cast<double>(12.345F));
  EXPECT_ERROR(time.TODnumbers(5, std::numeric_limits<double>::infinity(), 0), InvalidValue);
  EXPECT_ERROR(time.TODnumbers(1e39, 0, 0), Overflow);
  EXPECT_ERROR(time.TODseconds("noon"), TypeMismatch);
  EXPECT_ERROR(time.RelSeconds(Variant()), TypeMismatch);
}

TEST(Time, RelativeToAReference) {
  struct Row {
    const char* ownDate;
    double own;
    const char* date;
    double reference;
    double relative;
  };
  for (const Row& row :
       {Row{"03/15/2004", 86390, "03/16/2004", 10, -20},
        Row{"03/16/2004", 10, "03/15/2004", 86390, 20}, Row{"03/15/2004", 5, "03/15/2004", 2, 3},
        Row{"03/15/1904", 5, "03/15/2004", 5, 0},  // only the last two digits of a year matter
        Row{"01/01/2000", 0, "12/31/1999", 0, 86400},
        Row{"12/31/1929", 0, "01/01/2030", 0,
            (dateFrom("12/31/2029") - dateFrom("01/01/1930")) * 86400}}) {
    AQ_Time time = on(row.ownDate, row.own);
    if (row.relative > 2e9) {
      EXPECT_ERROR(time.setRelTime(on(row.date, row.reference)), Overflow);
    } else {
      time.setRelTime(on(row.date, row.reference));
      EXPECT_EQ(time.RelSeconds(), row.relative) << row.ownDate;
    }
  }
  AQ_Time noon = on("03/15/2004", 0);
  noon.CurrentDate(noon.CurrentDate() + 0.9);
  AQ_Time next = on("03/16/2004", 0);
  next.setRelTime(noon);
  EXPECT_EQ(next.RelSeconds(), 86400);  // only the whole days of a date matter
}

TEST(Time, CopyWrapsALongDayAndKeepsTheMode) {
  AQ_Time time = at("12:30:00 PM");
  time.RelSeconds(4);
  time.setWorkingTime(AQ_TIME_REF);
  time.CurrentDate(38000);
  const auto copy = time.Copy();
  EXPECT_EQ(copy->TODseconds(), 1800);
  EXPECT_EQ(copy->CurrentDate(), 38001);
  EXPECT_EQ(copy->WorkingTime(), 4);
  EXPECT_EQ(time.TODseconds(), 88200);
  time.setWorkingTime(static_cast<AQ_OPTIME>(5));
  EXPECT_EQ(time.WorkingTime(), 88200);
}

TEST(Platform, LocalTimesStayWithinTheSystemsYears) {
  constexpr std::int64_t kTwoDays = 2 * 86400;  // more than the offset of any time zone
#ifdef _WIN32
  constexpr std::int64_t kFirst = -11644473600;  // start of year 1601
#else
  constexpr std::int64_t kFirst = -62135596800;  // start of year 1
#endif
  for (const std::int64_t end : {kFirst, std::int64_t{253402300800}}) {
    const std::int64_t inside = end < 0 ? end + kTwoDays : end - kTwoDays;
    EXPECT_TRUE(platform::localTime(inside));
    EXPECT_FALSE(platform::localTime(2 * end - inside));
  }
}

}  // namespace
}  // namespace aq
