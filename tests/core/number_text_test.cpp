#include <aq/core/date_text.h>
#include <aq/core/level_text.h>
#include <aq/core/number_text.h>
#include <aq/core/plain_number.h>
#include <aq/core/time.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <bit>
#include <charconv>
#include <cmath>
#include <limits>
#include <random>

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
      {"65.30", 65.3},
      {"  -.25 ", -0.25},
      {"+7", 7},
      {"5.", 5},
      {"0", 0},
      {"1e3", 1000},
      {"1.5E-3", 0.0015},
      {"9007199254740993", 9007199254740992.0},
      {"1e-400", 0},
      {"0.001e-9223372036854775808", 0},
      {"0.3e1", 3},
      {"123456789012345678901234567890", 1.2345678901234568e29},
      {"0.000000000000000000000000000001", 1e-30},
      {"179769313486231570e291", Limits::max()}};
  for (const auto& [text, value] : rows) EXPECT_EQ(doubleFrom(text), value) << text;
  EXPECT_TRUE(std::signbit(doubleFrom("-0.00")) && std::signbit(doubleFrom("-1e-400")));
  EXPECT_EQ(singleFrom("0.1"), 0.1F);
  EXPECT_EQ(singleFrom("16777217"), 16777216.0F);
  EXPECT_EQ(int32From(" -2147483648 "), -2147483647 - 1);
  EXPECT_EQ(int16From("+32767"), 32767);
  EXPECT_EQ(byteFrom("255"), 255);
  EXPECT_EQ(upperCased("`az{"), "`AZ{");
}

TEST(NumberText, RefusesAnythingElse) {
  for (const char* text : {"", " ", ".", "-", "+", "nan", "inf", "0x10", "1,5", "12 3", "1e", "1e+",
                           "--1", "+-1", "1.2.3", "65.3dB", "\t1", "1\xC2\xA0"}) {
    EXPECT_ERROR(doubleFrom(text), TypeMismatch);
    EXPECT_ERROR(singleFrom(text), TypeMismatch);
    EXPECT_ERROR(int32From(text), TypeMismatch);
  }
  for (const char* text : {"1.0", "1e2", "5."}) EXPECT_ERROR(int16From(text), TypeMismatch);
  EXPECT_ERROR(doubleFrom("1e400"), Overflow);
  EXPECT_ERROR(doubleFrom("-1e99999999999999999999"), Overflow);
  EXPECT_ERROR(singleFrom("1e39"), Overflow);
  EXPECT_ERROR(int16From("32768"), Overflow);
  EXPECT_ERROR(int32From("99999999999999999999"), Overflow);
  EXPECT_ERROR(byteFrom("-1"), Overflow);
  EXPECT_ERROR(byteFrom("256"), Overflow);
}

TEST(NumberText, DefaultText) {
  const std::pair<double, const char*> doubles[] = {{0.5, "0.5"},
                                                    {-0.25, "-0.25"},
                                                    {0, "0"},
                                                    {-0.0, "0"},
                                                    {100, "100"},
                                                    {1e14, "100000000000000"},
                                                    {1e15, "1E+15"},
                                                    {1.0 / 3, "0.333333333333333"},
                                                    {1e-7, "0.0000001"},
                                                    {1.5e-8, "1.5E-08"},
                                                    {123456.789, "123456.789"},
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
                                                 {65.3, "65.30"},
                                                 {-0.25, "-.25"},
                                                 {0.125, ".13"},
                                                 {-0.125, "-.13"},
                                                 {0.375, ".38"},
                                                 {0.005, ".01"},
                                                 {0.004, ".00"},
                                                 {-0.004, ".00"},
                                                 {-0.0, ".00"},
                                                 {9999, "9999.00"},
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

/// The pattern by the exact decimal expansion alone.
std::string exactHundredths(double value) {
  char digits[400];
  char* const end = std::to_chars(digits, digits + 400, value, std::chars_format::fixed, 2).ptr;
  std::string text(digits, end);
  if (text == "-0.00" || text == "0.00") return ".00";
  if (text.starts_with("0.")) return text.substr(1);
  return text.starts_with("-0.") ? "-" + text.substr(2) : text;
}

TEST(NumberText, FastPathsEqualTheExactOnes) {
  std::mt19937_64 random(20260315);
  for (int hundredth = -100000; hundredth <= 100000; ++hundredth) {
    const double level = hundredth / 100.0;
    ASSERT_EQ(doubleFrom(hundredths(level)), level);
  }
  for (int i = 0; i < 200000; ++i) {
    const double any = std::bit_cast<double>(random());
    const double level = std::uniform_real_distribution<>(-200, 200)(random);
    for (const double value : {any, level, std::ldexp(level, static_cast<int>(random() % 40))}) {
      if (!std::isfinite(value)) continue;
      if (std::fmod(std::abs(value) * 8, 2) != 1) {
        ASSERT_EQ(hundredths(value), exactHundredths(value));
      }
      char text[32];
      const char* end = std::to_chars(text, text + 32, value, std::chars_format::general,
                                      1 + static_cast<int>(random() % 17))
                            .ptr;
      double exact = 0;
      std::from_chars(text, end, exact);
      if (std::isfinite(exact) && exact != 0) {
        ASSERT_EQ(doubleFrom({text, end}), exact);
      }
      float single = 0;
      if (std::from_chars(text, end, single).ec == std::errc()) {
        ASSERT_EQ(singleFrom({text, end}), single);
      }
    }
  }
}

/// The short ways take just the fields that they are for, and read them as the long ways do.
TEST(PlainNumber, TakesPlainFieldsAndNoOthers) {
  std::mt19937 random(17);
  const auto isDigit = [](char c) { return c >= '0' && c <= '9'; };
  for (int round = 0; round < 200000; ++round) {
    std::string text(random() % 19, '1');
    for (char& c : text)
      c = "0123456789098765432101234567895/:.,-"[random() % (round % 2 ? 33 : 36)];
    const std::string field = text.substr(0, text.find(','));
    const std::string size = field.starts_with('-') ? field.substr(1) : field;
    const auto count = std::count_if(size.begin(), size.end(), isDigit);
    const auto points = std::count(size.begin(), size.end(), '.');
    const bool isReal = count + points == std::ssize(size) && points < 2 && count > 0 && count < 16;
    const bool isInteger = isReal && points == 0 && count < 6 && std::stoi(size) <= 32767;
    const PlainNumber real = plainNumber(text);
    ASSERT_EQ(real.length, isReal ? field.size() : 0) << text;
    const PlainInteger integer = plainInteger(text);
    ASSERT_EQ(integer.length, isInteger ? field.size() : 0) << text;
    ASSERT_EQ(integer.value, isInteger ? std::stoi(field) : 0);
    double value = 0;
    ASSERT_EQ(numberFrom(real, value), isReal) << text;
    ASSERT_EQ(value, isReal ? std::stod(field) : 0) << text;
  }
}

TEST(PlainNumber, IsSingleWhileItsDigitsAreExact) {
  float single = 0;
  EXPECT_TRUE(numberFrom(plainNumber("1677.7216"), single));
  EXPECT_EQ(single, 1677.7216F);
  EXPECT_FALSE(numberFrom(plainNumber("1677.7217"), single));
}

TEST(PlainClock, TakesPlainTimesAndNoOthers) {
  std::mt19937 random(19);
  for (int round = 0; round < 100000; ++round) {
    std::string text = "00:00:00.000000,0";
    for (char& c : text) c = c == '0' ? static_cast<char>('0' + random() % 10) : c;
    if (round % 2 == 0) text[random() % text.size()] = "0/:.,"[random() % 5];
    text.resize(random() % 3 == 0 ? text.size() : random() % text.size());
    const std::string field = text.substr(0, text.find(','));
    std::string shape = field;
    for (char& c : shape) c = c >= '0' && c <= '9' ? '9' : c;
    const bool isClock = shape.size() >= 8 && std::string("99:99:99.999999").starts_with(shape);
    const PlainClock clock = plainClock(text);
    ASSERT_EQ(clock.length, isClock ? field.size() : 0) << text;
    if (!isClock) continue;
    AQ_Time time;
    time.TODstring(field);
    ASSERT_EQ(clock.seconds, time.TODseconds()) << text;
  }
}

/// A field that is nearly a level, or something else.
std::string oddField(std::mt19937& random) {
  constexpr std::array kOthers{"",        ".",
                               "-.00",    "-",
                               "9999.00", "-9999.00",
                               "9999.01", "65.3",
                               "65.300",  "+65.30",
                               " 1.00",   "6 .50",
                               "6/.30",   "6:.30",
                               "1e3",     "327.68",
                               "999.99",  "0.50",
                               "00.50",   "12345.67",
                               "65.3\0",  "..50",
                               "1.2.3",   "65.3-",
                               "nan",     "\xB0\xB0.\xB0\xB0"};
  return kOthers[random() % kOthers.size()];
}

TEST(LevelText, LevelsAtTheFrontAreThoseOfTheirFields) {
  std::mt19937 random(7);
  for (int round = 0; round < 50000; ++round) {
    std::vector<std::string> fields(1 + random() % 6);
    std::vector<bool> plain;
    std::string line;
    for (std::string& field : fields) {
      const auto code = static_cast<LevelCode>(random());
      plain.push_back(random() % 4 != 0);
      field = plain.back() ? hundredths(levelOf(code)) : oddField(random);
      line += (&field == fields.data() ? "" : ",") + field;
    }
    std::array<LevelCode, 4> codes{};
    const FieldsTaken taken = levelsAtFront(line, codes);
    std::size_t length = 0;
    for (std::size_t i = 0; i < taken.count; ++i) {
      const double level = doubleFrom(fields[i]);
      ASSERT_EQ(levelOf(codes[i]), level) << line;
      ASSERT_EQ(std::signbit(levelOf(codes[i])), std::signbit(level)) << line;
      ASSERT_EQ(codeOf(level), codes[i]) << line;
      length += fields[i].size() + 1;
    }
    ASSERT_EQ(taken.last, taken.count == fields.size()) << line;
    ASSERT_EQ(taken.length, taken.last ? line.size() : length) << line;
    const bool stopped = taken.count < std::min(fields.size(), codes.size());
    ASSERT_FALSE(stopped && plain[taken.count]) << line;
  }
}

TEST(LevelText, EveryCodeHasItsTextAndEveryOtherLevelNone) {
  for (int code = kInvalidCode; code <= 32767; ++code) {
    const double level = levelOf(static_cast<LevelCode>(code));
    ASSERT_EQ(codeOf(level), code);
    const std::array codes{static_cast<LevelCode>(code)};
    ASSERT_EQ(hundredths(level), hundredths(std::span<const LevelCode>(codes)));
  }
  for (const double level : {-0.0, 327.68, -327.68, 0.001, 65.305, 1e300, Limits::infinity(),
                             Limits::quiet_NaN(), std::nextafter(65.3, 66)}) {
    EXPECT_FALSE(codeOf(level)) << level;
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
  EXPECT_EQ(dateText(-0.75), "12/30/1899");  // the day is the whole part, before day zero too
  for (const char* text :
       {"", "02/29/2023", "13/01/2020", "00/10/2020", "1/1/20", "1/1/0000", "1/1", "1/1/2020/1",
        "001/1/2020", "1/001/2020", "a/1/2020", "1-1-2020"}) {
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
