#include "aq/core/time.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <optional>

#include "aq/text/date_text.h"
#include "aq/text/number_text.h"

namespace aq {
namespace {

/// Returns `number`. Throws `Overflow` if single precision cannot hold it.
float single(double number) { return Variant(number).toSingle(); }

void requireFiniteTime(double seconds) {
  if (std::isfinite(seconds)) return;
  throw Error(ErrorCode::InvalidValue, "the time of day is not a finite number");
}

bool containsLetters(std::string_view text, std::string_view capitals) {
  const auto same = [](char a, char capital) { return a == capital || a == capital + ('a' - 'A'); };
  return std::search(text.begin(), text.end(), capitals.begin(), capitals.end(), same) !=
         text.end();
}

/// `days`, rounded to whole days, in seconds. Throws `Overflow` if they do not fit in 32 bits.
std::int32_t secondsOf(double days) {
  const double seconds = std::round(days) * kSecondsPerDay;
  if (std::abs(seconds) > std::numeric_limits<std::int32_t>::max()) {
    throw Error(ErrorCode::Overflow, "too many days between a time and its reference");
  }
  return static_cast<std::int32_t>(seconds);
}

}  // namespace

std::shared_ptr<AQ_Time> AQ_Time::Copy() const {
  auto copy = std::make_shared<AQ_Time>();
  copy->CurrentDate(date_);
  copy->RelSeconds(relativeSeconds_);
  copy->TODseconds(timeOfDay_);
  copy->setWorkingTime(workingTime_);
  return copy;
}

void AQ_Time::setRelTime(const AQ_Time& reference) {
  const std::int32_t between =
      secondsOf(dayWithWindowedYear(reference.date_) - dayWithWindowedYear(date_));
  relativeSeconds_ = timeOfDay_ - (reference.timeOfDay_ + between);
}

void AQ_Time::TODseconds(const Variant& seconds) {
  double value = seconds.toDouble();
  requireFiniteTime(value);
  if (value > kSecondsPerDay) {
    const double whole = std::floor(value);
    value = std::fmod(whole, kSecondsPerDay) + (value - whole);
    date_ += 1;  // one day, even when the value spans several: hosts rely on it
  }
  timeOfDay_ = value;
}

void AQ_Time::TODnumbers(const Variant& Hours, const Variant& Minutes, const Variant& Seconds) {
  const auto hours = static_cast<double>(Hours.toSingle());
  const auto minutes = static_cast<double>(Minutes.toSingle());
  const auto seconds = static_cast<double>(Seconds.toSingle());
  const double value = seconds + (hours * 3600 + minutes * 60);
  requireFiniteTime(value);
  timeOfDay_ = value;
}

std::string AQ_Time::TODstring() const {
  std::string text;
  appendTODstring(text);
  return text;
}

void AQ_Time::appendTODstring(std::string& text) const {
  std::array<char, kTimeOfDaySize> buffer;
  text.append(buffer.data(), putTimeOfDay(buffer.data(), timeOfDay_));
}

void AQ_Time::TODstring(std::string_view text) {
  const PlainClock plain = plainClock(text);
  if (plain.length == text.size() && !text.empty()) {
    timeOfDay_ = plain.seconds;
    return;
  }
  const std::size_t first = text.find(':');
  const std::size_t second = first == text.npos ? text.npos : text.find(':', first + 1);
  if (second == text.npos) {
    throw Error(ErrorCode::InvalidArgument,
                "expected a time of day hh:mm:ss, found " + shown(text));
  }
  float hours = single(leadingNumber(text.substr(0, first)));
  const float minutes = single(leadingNumber(text.substr(first + 1, second - first)));
  const float seconds = single(leadingNumber(text.substr(second + 1)));
  // PM adds 12 to every hour, so 12:30:00 PM is 24.5 hours: hosts rely on it.
  if (containsLetters(text, "M")) {
    if (containsLetters(text, "PM")) hours += 12;
    if (containsLetters(text, "AM") && hours == 12) hours = 0;
  }
  timeOfDay_ = static_cast<double>(minutes) * 60 + static_cast<double>(hours) * 3600 +
               static_cast<double>(seconds);
}

}  // namespace aq
