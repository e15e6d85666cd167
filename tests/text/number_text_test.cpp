#include <aq/text/date_text.h>
#include <aq/text/level_code.h>
#include <aq/text/number_text.h>
#include <aq/text/plain_number.h>
#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <limits>

#include "tests/support/errors.h"

namespace aq {
namespace {

using Limits = std::numeric_limits<double>;

std::string hundredths(double level) {
  std::string text;
  appendLevel(text, level);
  return text;
}

std::string hundredths(std::span<const LevelCode> codes) {
  std::string text;
  appendLevels(text, codes);
  return text;
}

TEST(NumberText, ReadsWholeFields) {
  const std::pair<const char*, double> rows[] = {
      {"  -.25 ", -0.25},
      {"+7", 7},
      {"5.", 5},
      {"1.5E-3", 0.0015},
      {"9007199254740993", 9007199254740992.0},
      {"1e-400", 0},
      {"0.001e-9223372036854775808", 0},
      {"123456789012345678901234567890", 1.2345678901234568e29},
      {"0.000000000000000000000000000001", 1e-30},
      {"179769313486231570e291", Limits::max()}};
  for (const auto& [text, value] : rows) EXPECT_EQ(doubleFrom(text), value) << text;
  EXPECT_TRUE(std::signbit(doubleFrom("-0.00")) && std::signbit(doubleFrom("-1e-400")));
  EXPECT_EQ(doubleFrom("-1e-400"), 0);
  EXPECT_EQ(singleFrom("0.1"), 0.1F);
  EXPECT_EQ(singleFrom("16777217"), 16777216.0F);
  EXPECT_EQ(int32From(" -2147483648 "), -2147483647 - 1);
  EXPECT_EQ(int16From("+32767"), 32767);
  EXPECT_EQ(byteFrom("255"), 255);
  EXPECT_EQ(upperCased("`az{"), "`AZ{");
}

TEST(NumberText, RejectsAnythingElse) {
  for (const char* text : {"", " ", ".", "-", "+", "nan", "inf", "0x10", "1,5", "12 3", "1e", "1e+",
                           "--1", "+-1", "1.2.3", "65.3dB", "\t1", "1\xC2\xA0"}) {
    EXPECT_ERROR(doubleFrom(text), TypeMismatch);
    EXPECT_ERROR(singleFrom(text), TypeMismatch);
    EXPECT_ERROR(int32From(text), TypeMismatch);
  }
  for (const char* text : {"1.0", "1e2", "5."}) EXPECT_ERROR(int16From(text), TypeMismatch);
  EXPECT_ERROR(doubleFrom("1e400"), Overflow);
  EXPECT_ERROR(doubleFrom('1' + std::string(400, '0')), Overflow);
  EXPECT_EQ(doubleFrom("0." + std::string(400, '0') + "1e+50"), 0);
  EXPECT_ERROR(doubleFrom("-1e99999999999999999999"), Overflow);
  EXPECT_ERROR(doubleFrom("0." + std::string(90, '0') + "1e+400"), Overflow);
  EXPECT_ERROR(singleFrom("1e39"), Overflow);
  EXPECT_ERROR(int16From("32768"), Overflow);
  EXPECT_ERROR(int32From("99999999999999999999"), Overflow);
  EXPECT_ERROR(byteFrom("-1"), Overflow);
  EXPECT_ERROR(byteFrom("256"), Overflow);
}

TEST(NumberText, DefaultText) {
  const std::pair<double, const char*> doubles[] = {{0.5, "0.5"},
                                                    {-0.0, "0"},
                                                    {1e14, "100000000000000"},
                                                    {1e15, "1E+15"},
                                                    {1.0 / 3, "0.333333333333333"},
                                                    {1e-7, "0.0000001"},
                                                    {1.5e-8, "1.5E-08"},
                                                    {0.1 + 0.2, "0.3"}};
  for (const auto& [value, text] : doubles) EXPECT_EQ(numberText(value), text);
  const std::pair<float, const char*> singles[] = {
      {0.1F, "0.1"}, {16777216.0F, "1.677722E+07"}, {-1.5F, "-1.5"}, {1234567.0F, "1234567"}};
  for (const auto& [value, text] : singles) EXPECT_EQ(numberText(value), text);
  EXPECT_EQ(numberText(std::int32_t{-2147483647 - 1}), "-2147483648");
  EXPECT_ERROR(numberText(Limits::infinity()), InvalidValue);
}

TEST(NumberText, LevelsHaveTwoDecimalsAndNoLeadingZero) {
  const std::pair<double, const char*> rows[] = {{0.5, ".50"},
                                                 {-0.25, "-.25"},
                                                 {0.125, ".13"},
                                                 {0.005, ".01"},
                                                 {-0.004, ".00"},
                                                 {-0.0, ".00"},
                                                 {1.005, "1.00"},
                                                 {99.995, "100.00"},
                                                 {0.015, ".01"},
                                                 {1e15 + 0.125, "1000000000000000.13"},
                                                 {281474976710656.375, "281474976710656.38"},
                                                 {2e22, "20000000000000000000000.00"},
                                                 {12345678.875, "12345678.88"}};
  for (const auto& [value, text] : rows) EXPECT_EQ(hundredths(value), text) << value;
  EXPECT_ERROR(hundredths(Limits::quiet_NaN()), InvalidValue);
  EXPECT_ERROR(hundredths(-Limits::infinity()), InvalidValue);
}

TEST(PlainNumber, HasTheSameFormInAWordAsInALongerText) {
  const std::vector<std::string> forms = {"0",         "7.",        ".5",       "-.25",
                                          "-0",        "12345678",  "1234.567", "-12345.78",
                                          "123456789", "-1234567.9"};
  for (const std::string& form : forms) {
    double number = 0;
    for (const std::string& text : {form, form + ",", form + ",1,2345678", form + ",x"}) {
      EXPECT_TRUE(numberFrom(plainNumber(text), number)) << text;
      EXPECT_EQ(plainNumber(text).length, form.size()) << text;
      EXPECT_EQ(number, std::stod(form)) << text;
      EXPECT_EQ(std::signbit(number), form[0] == '-') << text;
    }
  }
  for (const char* text :
       {"", ",", ".", "-", "-.,1", "1.2.3,4", "1 ,2", "+1", "1e5,", "12345678x", "--1,23456"}) {
    EXPECT_EQ(plainNumber(text).length, 0U) << text;
  }
}

TEST(PlainNumber, IsSingleWhileItsDigitsAreExact) {
  float single = 0;
  EXPECT_TRUE(numberFrom(plainNumber("1677.7216"), single));
  EXPECT_EQ(single, 1677.7216F);
  EXPECT_FALSE(numberFrom(plainNumber("1677.7217"), single));
}

TEST(LevelText, AnyNumberOfLevels) {
  std::string text;
  appendLevels(text, std::vector<double>(1000, -65.3));
  appendLevels(text, std::vector<LevelCode>(1000, LevelCode{6530}));
  EXPECT_EQ(text.size(), 7 * 1000 - 1 + 6 * 1000 - 1);
}

TEST(LevelText, EveryCodeHasItsTextAndEveryOtherLevelNone) {
  for (int code = kInvalidCode; code <= 32767; ++code) {
    const double level = levelOf(static_cast<LevelCode>(code));
    ASSERT_EQ(codeOf(level), code);
    const std::array codes{static_cast<LevelCode>(code)};
    ASSERT_EQ(hundredths(level), hundredths(std::span<const LevelCode>(codes)));
    ASSERT_EQ(doubleFrom(hundredths(level)), level);
  }
  for (const double level : {-0.0, 327.68, -327.68, 0.001, 65.305, 1e300, Limits::infinity(),
                             Limits::quiet_NaN(), std::nextafter(65.3, 66)}) {
    EXPECT_FALSE(codeOf(level)) << level;
  }
}

TEST(LevelText, LevelsOfAnyWidthAndWhatIsNoLevel) {
  const auto taken = [](std::string_view text) {
    std::array<LevelCode, 70> codes{};
    const FieldsTaken fields = levelsAtFront(text, codes);
    std::string again;
    appendLevels(again, std::span<const LevelCode>(codes).first(fields.count));
    return again + (fields.last ? "" : "|") + std::string(text.substr(fields.length));
  };
  // Every mixture of widths in four neighbouring fields, then more fields than are found at once.
  const std::array<std::string, 6> widths{".50", "5.25", "65.75", "105.50", "9999.00", "-.25"};
  std::string all;
  for (std::size_t mix = 0; mix < 6 * 6 * 6 * 6; ++mix) {
    const std::string text = widths[mix % 6] + "," + widths[mix / 6 % 6] + "," +
                             widths[mix / 36 % 6] + "," + widths[mix / 216];
    ASSERT_EQ(taken(text), text);
    ASSERT_EQ(taken(text + ",x"), text + "|x");
    all += (all.empty() ? "" : ",") + text;
    if (mix % 17 == 16) {
      ASSERT_EQ(taken(all), all);
      all.clear();
    }
  }
  for (const std::string field :
       {"", " 5.25", "'5.25", "$65.75", "65.7", "65,75", "1065.75", "5 .25", "-.00", "327.68",
        "65.7a", "6:.75", "65.750", "+5.25", "/5.25"}) {
    EXPECT_EQ(taken(field + ",65.75,65.75,65.75"), "|" + field + ",65.75,65.75,65.75");
  }
}

TEST(LevelText, LevelsInColumns) {
  std::array<LevelCode, 1> code{};
  EXPECT_EQ(codesInColumns("   65.75", code), 1);
  EXPECT_EQ(code[0], 6575);
  for (const std::string_view text : {"  $65.75", "   6 .75", "   65.7 ", " 1065.75", "  \"5.75"}) {
    EXPECT_EQ(codesInColumns(text, code), 0) << text;
  }
}

TEST(DateText, DaysOfTheCalendar) {
  EXPECT_EQ(dateFrom("12/30/1899"), 0);
  EXPECT_EQ(dateFrom(" 3/5/2004 "), dateFrom(2004, 3, 5));
  EXPECT_EQ(dateText(dateFrom("02/29/2024")), "02/29/2024");
  for (const double end : {dateFrom(1, 1, 1), dateFrom(9999, 12, 31)}) {
    EXPECT_EQ(dateFrom(dateText(end)), end);
    EXPECT_ERROR(dateText(end > 0 ? end + 1 : end - 1), Overflow);
  }
  EXPECT_EQ(dateText(-0.75), "12/30/1899");  // the day is the whole part, even before day zero
  for (const char* text :
       {"", "02/29/2023", "13/01/2020", "00/10/2020", "1/1/20", "1/1/0000", "1/1", "1/1/2020/1",
        "001/1/2020", "1/001/2020", "a/1/2020", "1/:/2020", "1-1-2020"}) {
    EXPECT_ERROR(dateFrom(text), TypeMismatch);
  }
  EXPECT_EQ(clockTimeFrom(" 7:05:09"), "07:05:09");
  for (const char* text :
       {"", "24:00:00", "10:60:00", "10:00:60", "10:00", "10:00:00.5", "-1:00:00", "10:00:00 PM",
        "::", "100:00:00", "10:000:00", "10:00:000"}) {
    EXPECT_ERROR(clockTimeFrom(text), TypeMismatch);
  }
}

}  // namespace
}  // namespace aq
