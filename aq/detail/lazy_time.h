#pragma once

#include <memory>
#include <utility>

#include "aq/core/time.h"

namespace aq {

/// The time of an object of which there are many: two values, until somebody asks for the object
/// or shares one; then that counts.
class LazyTime {
 public:
  /// Made on first use and then kept.
  const std::shared_ptr<AQ_Time>& object() {
    if (!object_) object_ = std::make_shared<AQ_Time>(value());
    return object_;
  }
  void share(std::shared_ptr<AQ_Time> time) {
    object_ = std::move(time);
    assignValues(0, 0);
  }

  /// Makes the time a new one with this time of day and relative seconds.
  void assign(double timeOfDay, double relativeSeconds = 0) {
    object_.reset();
    assignValues(timeOfDay, relativeSeconds);
  }

  /// A time of its own with what `AQ_Time::Copy` keeps.
  [[nodiscard]] LazyTime copied() const {
    LazyTime copy = *this;
    if (object_ || timeOfDay_ > kSecondsPerDay) copy.share(value().Copy());
    return copy;
  }

  /// The time by value, without making an object for it.
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
