#pragma once

#include <cstdint>
#include <memory>
#include <string>

#include "aq/core/enumerations.h"
#include "aq/core/export.h"
#include "aq/core/variant.h"

namespace aq {

inline constexpr std::int32_t kSecondsPerDay = 86400;

/// A time stamp: a calendar date, a time of day and a time relative to a reference. The two times
/// are independent of each other; only `setRelTime` derives one from the other. The date and both
/// times start at zero. A failure leaves the object unchanged.
class AQ_API AQ_Time {
 public:
  /// A new time with the same values, except that a time of day above 86400 s is wrapped and the
  /// date advanced by one day.
  [[nodiscard]] std::shared_ptr<AQ_Time> Copy() const;

  /// Seconds relative to a reference time. Throws `TypeMismatch` for a value that is not a number.
  [[nodiscard]] double RelSeconds() const { return relativeSeconds_; }
  void RelSeconds(const Variant& seconds) { relativeSeconds_ = seconds.toDouble(); }

  /// Sets the relative seconds to the time since `reference`, including the days between the two
  /// dates. Only the calendar day of each date matters, with the century derived from the last two
  /// digits of its year (30 to 99 are 1930 to 1999, 00 to 29 are 2000 to 2029). Throws `Overflow`
  /// if the days in between, in seconds, do not fit in 32 bits.
  void setRelTime(const AQ_Time& reference);

  /// Seconds after midnight. A value above 86400 wraps around at midnight and advances the date by
  /// one day, even if it spans several; 86400 and negative values are left as they are. Throws
  /// `TypeMismatch` for a value that is not a number, `InvalidValue` for one that is not finite.
  [[nodiscard]] double TODseconds() const { return timeOfDay_; }
  void TODseconds(const Variant& seconds);

  /// Sets the time of day from three numbers, each first rounded to single precision. Does not
  /// check the range, and keeps the date. Throws what `TODseconds` throws, and `Overflow` for a
  /// number too large for single precision.
  void TODnumbers(const Variant& Hours, const Variant& Minutes, const Variant& Seconds);

  /// The time of day as text: `hh:mm:ss`, then the fraction left when the seconds after midnight,
  /// in single precision, are rounded to 7 significant digits (12:34:56.5). 24 hours are written as
  /// 00. Getting it throws `InvalidValue` for times below 0 s or of 90000 s or more. Setting it
  /// takes three numbers separated by colons. A "PM" anywhere in the text adds 12 hours (12:30:00
  /// PM gives 24.5 hours); with an "AM", 12 hours become 0. Throws `InvalidArgument` for fewer than
  /// two colons, `Overflow` for a number too large for single precision.
  [[nodiscard]] std::string TODstring() const;
  void TODstring(std::string_view text);

  /// The calendar date, days since 1899-12-30, stored as given; 0 when not set.
  [[nodiscard]] double CurrentDate() const { return date_; }
  void CurrentDate(double date) { date_ = date; }

  /// The relative seconds when the working time is `AQ_TIME_REF`, otherwise the time of day.
  [[nodiscard]] double WorkingTime() const {
    return workingTime_ == AQ_TIME_REF ? relativeSeconds_ : timeOfDay_;
  }
  void setWorkingTime(AQ_OPTIME mode) { workingTime_ = mode; }

  /// Stores both times without wrapping or checking.
  void assignSeconds(double timeOfDay, double relativeSeconds) {
    timeOfDay_ = timeOfDay;
    relativeSeconds_ = relativeSeconds;
  }

  /// Appends the `TODstring` to `text`.
  void appendTODstring(std::string& text) const;

 private:
  double date_ = 0;
  double timeOfDay_ = 0;
  double relativeSeconds_ = 0;
  AQ_OPTIME workingTime_ = AQ_TIME_TOD;
};

}  // namespace aq
