#pragma once

#include <cstddef>
#include <string>
#include <string_view>

#include "aq/core/export.h"

// Calendar dates and clock times as text and back. A date value is a double: the days since
// 1899-12-30, with the time of day as the fraction.

namespace aq {

/// The date value of a calendar day.
[[nodiscard]] AQ_API double dateFrom(int year, unsigned month, unsigned day);

/// The date value of `mm/dd/yyyy`; months and days may have one digit, and outer blanks are
/// allowed. Throws `TypeMismatch` for any other text.
[[nodiscard]] AQ_API double dateFrom(std::string_view text);

/// The clock time in `text` with two digits for each part, `hh:mm:ss`. In `text`, each part may
/// have one digit, hours are 0 to 23, and outer blanks are allowed. Throws `TypeMismatch` for any
/// other text.
[[nodiscard]] AQ_API std::string clockTimeFrom(std::string_view text);

/// The seconds after midnight of `hh:mm:ss` with up to nine decimals, correctly rounded. The
/// hour is 0 to 23 and may have one digit, and outer blanks are allowed. Throws `TypeMismatch` for
/// any other text.
[[nodiscard]] AQ_API double secondsOfDayFrom(std::string_view text);

/// Appends `hh:mm:ss.sss`, rounding exact halves away from zero. Throws `InvalidValue` for a time
/// below 0 or one that rounds to 24 hours or more.
AQ_API void appendMilliseconds(std::string& text, double secondsOfDay);

/// A clock time as `plainClock` finds it: its seconds after midnight, and its length in characters,
/// 0 if there is no such time. The seconds of the minute are rounded to single precision.
struct PlainClock {
  double seconds = 0;
  std::size_t length = 0;
};

/// The `hh:mm:ss` with up to six decimals that fills `text` up to its first comma or its end.
/// Hours, minutes and seconds may be any two digits.
[[nodiscard]] AQ_API PlainClock plainClock(std::string_view text);

/// A clock time `hh:mm:ss` on the twelve-hour clock, as in "12:30:00 PM".
[[nodiscard]] AQ_API std::string twelveHourText(std::string_view clockTime);

/// The calendar day of `date`, its century derived from the two-digit year: 30 to 99 are 1930 to
/// 1999, 00 to 29 are 2000 to 2029. Throws `Overflow` outside the years 1 to 9999.
[[nodiscard]] AQ_API double dayWithWindowedYear(double date);

/// Appends `hours:minutes:seconds`, two digits each.
AQ_API void appendClockTime(std::string& text, int hours, int minutes, int seconds);

inline constexpr std::size_t kTimeOfDaySize = 72;  // a clock time and any fraction

/// Writes `hh:mm:ss` and any fraction, in single precision, and returns the end of the text; `at`
/// must have room for `kTimeOfDaySize` characters. Hour 24 is written as 00. Throws `InvalidValue`
/// for a time below 0 or of 25 hours or more.
[[nodiscard]] AQ_API char* putTimeOfDay(char* at, double seconds);

/// `mm/dd/yyyy`. Throws `Overflow` outside the years 1 to 9999.
[[nodiscard]] AQ_API std::string dateText(double date);

}  // namespace aq
