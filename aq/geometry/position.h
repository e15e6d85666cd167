#pragma once

#include <memory>
#include <utility>

#include "aq/core/export.h"
#include "aq/detail/lazy_time.h"

namespace aq {

/// One sample of a source's position: a time of day and three Cartesian coordinates in metres, or
/// in the length unit of its file; nothing is converted. Coordinates are 0 until set.
class AQ_API AQ_Position {
 public:
  /// A deep copy.
  [[nodiscard]] std::shared_ptr<AQ_Position> Copy();

  /// Created on first read; setting shares the caller's object.
  std::shared_ptr<AQ_Time> Time() { return time_.object(); }
  void Time(std::shared_ptr<AQ_Time> time) { time_.share(std::move(time)); }

  [[nodiscard]] double X() const { return x_; }
  [[nodiscard]] double Y() const { return y_; }
  /// The height.
  [[nodiscard]] double Z() const { return z_; }
  void X(double x) { x_ = x; }
  void Y(double y) { y_ = y; }
  void Z(double z) { z_ = z; }

  /// The time, without creating its object.
  [[nodiscard]] LazyTime& lazyTime() { return time_; }
  [[nodiscard]] const LazyTime& lazyTime() const { return time_; }

 private:
  LazyTime time_;
  double x_ = 0;
  double y_ = 0;
  double z_ = 0;
};

}  // namespace aq
