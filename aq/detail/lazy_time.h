#pragma once

#include <memory>
#include <utility>

#include "aq/core/time.h"

namespace aq {

/// A time stored as two doubles, for objects of which there are many. Creates the `AQ_Time` on
/// first access; from then on, or once one is shared, that object holds the time.
class LazyTime {
 public:
  /// Created on first use and then kept.
  const std::shared_ptr<AQ_Time>& object() {
    if (!object_) object_ = std::make_shared<AQ_Time>(value());
    return object_;
  }
  void share(std::shared_ptr<AQ_Time> time) {
    object_ = std::move(time);
    assignValues(0, 0);
  }

  /// Replaces the time by a new one with this time of day and relative seconds.
  void assign(double timeOfDay, double relativeSeconds = 0) {
    object_.reset();
    assignValues(timeOfDay, relativeSeconds);
  }

  /// A separate time with what `AQ_Time::Copy` keeps.
  [[nodiscard]] LazyTime copied() const {
    LazyTime copy = *this;
    if (object_ || timeOfDay_ > kSecondsPerDay) copy.share(value().Copy());
    return copy;
  }

  /// The time by value; creates no object.
  [[nodiscard]] AQ_Time value() const {
    if (object_) return *object_;
    AQ_Time time;
    time.assignSeconds(timeOfDay_, relativeSeconds_);
    return time;
  }

  [[nodiscard]] double secondsOfDay() const { return object_ ? object_->TODseconds() : timeOfDay_; }

 private:
  void assignValues(double timeOfDay, double relativeSeconds) {
    timeOfDay_ = timeOfDay;
    relativeSeconds_ = relativeSeconds;
  }

  std::shared_ptr<AQ_Time> object_;
  double timeOfDay_ = 0;
  double relativeSeconds_ = 0;
};

}  // namespace aq
