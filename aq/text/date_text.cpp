#include "aq/text/date_text.h"

#include <algorithm>
#include <array>
#include <chrono>
#include <cmath>
#include <cstdint>
#include <optional>

#include "aq/core/error.h"
#include "aq/text/number_text.h"
#include "aq/text/word.h"

namespace aq {
namespace {

using std::chrono::day;
using std::chrono::month;
using std::chrono::sys_days;
using std::chrono::year;
using std::chrono::year_month_day;

constexpr sys_days kDayZero{year{1899} / 12 / 30};
constexpr sys_days kFirstDay{year{1} / 1 / 1};
constexpr sys_days kLastDay{year{9999} / 12 / 31};

year_month_day calendarDay(double date) {
  // The time of day counts forward even before day zero, so the integer part is the day.
  const double whole = std::trunc(date);
  const auto days = [](sys_days at) { return static_cast<double>((at - kDayZero).count()); };
  if (!(whole >= days(kFirstDay) && whole <= days(kLastDay))) {
    throw Error(ErrorCode::Overflow, "date outside the years 1 to 9999");
  }
  return kDayZero + std::chrono::days{static_cast<int>(whole)};
}

double dateValue(year_month_day at) {
  return static_cast<double>((sys_days{at} - kDayZero).count());
}

struct Digits {
  std::size_t fewest;
  std::size_t most;
};

/// The three whole numbers of `text`, separated by `separator`; nothing if one of them
/// has a character that is not a digit, or a number of digits that `widths` does not allow.
std::optional<std::array<int, 3>> threeNumbers(std::string_view text, char separator,
                                               const std::array<Digits, 3>& widths) {
  std::array<int, 3> numbers{};
  text = trimmed(text);
  for (std::size_t i = 0; i < numbers.size(); ++i) {
    const std::size_t size = i < 2 ? std::min(text.find(separator), text.size()) : text.size();
    const std::string_view digits = text.substr(0, size);
    if (size < widths[i].fewest || size > widths[i].most) return std::nullopt;
    for (const char c : digits) {
      if (c < '0' || c > '9') return std::nullopt;
      numbers[i] = numbers[i] * 10 + (c - '0');
    }
    text.remove_prefix(std::min(size + 1, text.size()));
  }
  return numbers;
}

constexpr std::size_t kClockSize = 8;

char* putClockTime(char* at, int hours, int minutes, int seconds) {
  const auto tens = [](int number) { return static_cast<char>('0' + number / 10); };
  const auto ones = [](int number) { return static_cast<char>('0' + number % 10); };
  const std::array<char, kClockSize> clock{tens(hours),   ones(hours),   ':',
                                           tens(minutes), ones(minutes), ':',
                                           tens(seconds), ones(seconds)};
  return std::copy(clock.begin(), clock.end(), at);
}

void appendPadded(std::string& text, int number, std::size_t width) {
  const std::string digits = numberText(static_cast<std::int32_t>(number));
  text.append(width - std::min(width, digits.size()), '0');
  text += digits;
}

}  // namespace

double dateFrom(int calendarYear, unsigned calendarMonth, unsigned dayOfMonth) {
  return dateValue(year{calendarYear} / month{calendarMonth} / day{dayOfMonth});
}

double dateFrom(std::string_view text) {
  const auto numbers = threeNumbers(text, '/', {{{1, 2}, {1, 2}, {4, 4}}});
  if (numbers) {
    const auto [monthNumber, dayNumber, yearNumber] = *numbers;
    const year_month_day at = year{yearNumber} / monthNumber / dayNumber;
    if (at.ok() && yearNumber > 0) return dateValue(at);
  }
  throw Error(ErrorCode::TypeMismatch, "expected a date mm/dd/yyyy, found " + shown(text));
}

std::string clockTimeFrom(std::string_view text) {
  const auto numbers = threeNumbers(text, ':', {{{1, 2}, {1, 2}, {1, 2}}});
  if (!numbers || (*numbers)[0] > 23 || (*numbers)[1] > 59 || (*numbers)[2] > 59) {
    throw Error(ErrorCode::TypeMismatch, "expected a time hh:mm:ss, found " + shown(text));
  }
  std::string clock;
  appendClockTime(clock, (*numbers)[0], (*numbers)[1], (*numbers)[2]);
  return clock;
}

namespace {

/// The milliseconds of a time of day written as `hh:mm:ss.sss`; nothing for any other text.
std::optional<std::int32_t> plainMilliseconds(std::string_view text) {
  constexpr std::string_view kForm = "00:00:00.000";
  if (text.size() != kForm.size()) return std::nullopt;
  std::array<int, kForm.size()> digits;
  bool plain = true;
  for (std::size_t place = 0; place < kForm.size(); ++place) {
    digits[place] = text[place] - kForm[place];
    const int most = kForm[place] == '0' ? 9 : 0;
    plain = plain && digits[place] >= 0 && digits[place] <= most;
  }
  const int hours = digits[0] * 10 + digits[1];
  if (!plain || hours > 23 || digits[3] > 5 || digits[6] > 5) return std::nullopt;
  const int minutes = hours * 60 + digits[3] * 10 + digits[4];
  const int seconds = minutes * 60 + digits[6] * 10 + digits[7];
  return seconds * 1000 + digits[9] * 100 + digits[10] * 10 + digits[11];
}

}  // namespace

double secondsOfDayFrom(std::string_view text) {
  if (const auto milliseconds = plainMilliseconds(text)) return *milliseconds / 1e3;
  constexpr std::size_t kMostDecimals = 9;
  const std::string_view clock = trimmed(text);
  const std::size_t point = std::min(clock.find('.'), clock.size());
  const auto numbers = threeNumbers(clock.substr(0, point), ':', {{{1, 2}, {2, 2}, {2, 2}}});
  const std::string_view decimals = clock.substr(std::min(point + 1, clock.size()));
  const auto isDigit = [](char c) { return c >= '0' && c <= '9'; };
  if (!numbers || (*numbers)[0] > 23 || (*numbers)[1] > 59 || (*numbers)[2] > 59 ||
      decimals.size() > kMostDecimals || !std::all_of(decimals.begin(), decimals.end(), isDigit)) {
    throw Error(ErrorCode::TypeMismatch, "expected a time hh:mm:ss.sss, found " + shown(text));
  }
  std::int64_t count = (*numbers)[0] * 3600 + (*numbers)[1] * 60 + (*numbers)[2];
  double scale = 1;
  for (const char c : decimals) {
    count = count * 10 + (c - '0');
    scale *= 10;
  }
  return static_cast<double>(count) / scale;
}

void appendMilliseconds(std::string& text, double secondsOfDay) {
  constexpr std::int64_t kDay = 86'400'000;
  const std::int64_t all =
      secondsOfDay >= 0 && secondsOfDay < 86400 ? scaledBy(secondsOfDay, 1e3) : kDay;
  if (all >= kDay) {
    throw Error(ErrorCode::InvalidValue, "a time of day before 00:00:00.000 or after 23:59:59.999");
  }
  const auto seconds = static_cast<int>(all / 1000);
  appendClockTime(text, seconds / 3600, seconds / 60 % 60, seconds % 60);
  text += '.';
  for (const std::int64_t unit : {100, 10, 1}) text += static_cast<char>('0' + all / unit % 10);
}

PlainClock plainClock(std::string_view text) {
  constexpr std::size_t kPoint = 8;
  constexpr std::size_t kLongest = kPoint + 7;
  if (text.size() < kPoint || text[2] != ':' || text[5] != ':') return {};
  const std::uint64_t clock = wordOfText(text) ^ wordOfText("00:00:00");
  bool digits = areDigits(clock);
  const std::uint64_t pairs = clock * 10 + (clock >> 8);
  const int hours = byteOf(pairs, 0);
  const int minutes = byteOf(pairs, 3);
  std::int32_t seconds = byteOf(pairs, 6);  // with its decimals as one integer
  std::int32_t scale = 1;
  std::size_t place = kPoint;
  if (place < text.size() && text[place] == '.') ++place;
  for (; place > kPoint && place < std::min(text.size(), kLongest) && text[place] != ','; ++place) {
    const auto digit = static_cast<unsigned>(text[place] - '0');
    digits = digits && digit <= 9;
    seconds = seconds * 10 + static_cast<int>(digit);
    scale *= 10;
  }
  if (!digits || (place < text.size() && text[place] != ',')) return {};
  const auto narrowed = static_cast<float>(seconds / static_cast<double>(scale));
  return {minutes * 60 + hours * 3600 + static_cast<double>(narrowed), place};
}

std::string twelveHourText(std::string_view clockTime) {
  const int hours = int16From(clockTime.substr(0, 2));
  const int onDial = (hours + 11) % 12 + 1;
  std::string text;
  appendPadded(text, onDial, 2);
  text += clockTime.substr(2);
  return text + (hours < 12 ? " AM" : " PM");
}

double dayWithWindowedYear(double date) {
  const year_month_day at = calendarDay(date);
  const int inCentury = static_cast<int>(at.year()) % 100;
  const year windowed{inCentury < 30 ? 2000 + inCentury : 1900 + inCentury};
  return dateValue(windowed / at.month() / at.day());
}

void appendClockTime(std::string& text, int hours, int minutes, int seconds) {
  std::array<char, kClockSize> clock;
  text.append(clock.data(), putClockTime(clock.data(), hours, minutes, seconds));
}

char* putTimeOfDay(char* at, double seconds) {
  static_assert(kTimeOfDaySize >= kClockSize + kFractionSize);
  constexpr double kEnd = 90000;  // hours go up to 24
  const bool near = std::abs(seconds) <= kEnd;
  const auto narrowed = static_cast<float>(near ? seconds : kEnd);
  const auto time = static_cast<double>(narrowed);
  if (!(time >= 0 && time < kEnd)) {
    throw Error(
        ErrorCode::InvalidValue,
        "the time of day cannot be written as hh:mm:ss: it is negative or 25 hours or more");
  }
  const int second = static_cast<int>(time);
  const int hours = second / 3600;
  at = putClockTime(at, hours == 24 ? 0 : hours, second / 60 % 60, second % 60);
  return putFraction(at, narrowed);
}

std::string dateText(double date) {
  const year_month_day at = calendarDay(date);
  std::string text;
  appendPadded(text, static_cast<int>(static_cast<unsigned>(at.month())), 2);
  text += '/';
  appendPadded(text, static_cast<int>(static_cast<unsigned>(at.day())), 2);
  text += '/';
  appendPadded(text, static_cast<int>(at.year()), 4);
  return text;
}

}  // namespace aq
