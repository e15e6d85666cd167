#pragma once

#include <memory>
#include <utility>
#include <variant>

#include "aq/core/time.h"

namespace aq {

/// A time stored as two doubles, for objects that exist in large numbers. Once `object` has
/// created an `AQ_Time`, or a caller has shared one, that object holds the time.
class LazyTime {
 public:
  /// The time as an object, created on the first call.
  const std::shared_ptr<AQ_Time>& object() {
    if (shared() == nullptr) time_ = std::make_shared<AQ_Time>(value());
    return *std::get_if<Object>(&time_);
  }
  void share(std::shared_ptr<AQ_Time> time) {
    if (time) {
      time_ = std::move(time);
    } else {
      time_ = Seconds();
    }
  }

  /// Replaces the time with a new one that has this time of day and these relative seconds.
  void assign(double timeOfDay, double relativeSeconds = 0) {
    time_ = Seconds{timeOfDay, relativeSeconds};
  }

  /// A separate time with the values that `AQ_Time::Copy` keeps.
  [[nodiscard]] LazyTime copied() const {
    LazyTime copy = *this;
    if (shared() != nullptr || seconds().ofDay > kSecondsPerDay) copy.share(value().Copy());
    return copy;
  }

  /// The time by value; creates no object.
  [[nodiscard]] AQ_Time value() const {
    if (const AQ_Time* const object = shared()) return *object;
    AQ_Time time;
    time.assignSeconds(seconds().ofDay, seconds().relative);
    return time;
  }

  [[nodiscard]] double secondsOfDay() const {
    const AQ_Time* const object = shared();
    return object != nullptr ? object->TODseconds() : seconds().ofDay;
  }

 private:
  struct Seconds {
    double ofDay;
    double relative;
  };
  using Object = std::shared_ptr<AQ_Time>;

  [[nodiscard]] const AQ_Time* shared() const {
    const auto* const object = std::get_if<Object>(&time_);
    return object != nullptr ? object->get() : nullptr;
  }
  /// Zero if the time was moved from.
  [[nodiscard]] Seconds seconds() const {
    const auto* const seconds = std::get_if<Seconds>(&time_);
    return seconds != nullptr ? *seconds : Seconds();
  }

  [[no_unique_address]] std::variant<Seconds, Object> time_;  // the owner can use its padding
};

}  // namespace aq
