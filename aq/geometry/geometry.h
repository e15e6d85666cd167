#pragma once

#include <memory>
#include <utility>

#include "aq/core/export.h"
#include "aq/core/time.h"
#include "aq/detail/pointers.h"
#include "aq/geometry/position.h"

namespace aq {

/// The emission geometry of one measured record: when its sound was emitted, where the source was
/// then, and how the sound reached the microphone. `emissionGeometry` gives metres, degrees and
/// seconds; points from other programs may have another length unit, and nothing is converted.
/// Numbers are 0 until set.
class AQ_API AQ_Geometry {
 public:
  /// Slant range at emission, m.
  double SRe = 0;
  /// Angle between the direction of flight and the line to the microphone, degrees, 0 to 180.
  float THETAe = 0;
  /// Angle about the direction of flight, from straight down to the line to the microphone,
  /// degrees, -180 to 180; positive to the left.
  float BETAe = 0;
  /// Propagation time from emission to measurement, s.
  double Tprope = 0;
  /// Free for diagnostics, s; written to files, but neither read back nor copied.
  double debugTime = 0;

  /// A deep copy, but with a `debugTime` of 0, as hosts expect. Creates this point's position and
  /// times if they are missing.
  [[nodiscard]] std::shared_ptr<AQ_Geometry> Copy();

  /// The source's position at emission. Created on first read; setting shares the caller's object.
  std::shared_ptr<AQ_Position> Pe() { return orCreate(emissionPosition_); }
  void Pe(std::shared_ptr<AQ_Position> position) { emissionPosition_ = std::move(position); }

  /// The time of emission. Created on first read; setting shares the caller's object.
  std::shared_ptr<AQ_Time> Te() { return orCreate(emissionTime_); }
  void Te(std::shared_ptr<AQ_Time> time) { emissionTime_ = std::move(time); }

  /// The time of the record at the microphone. Created on first read; setting shares the caller's
  /// object.
  std::shared_ptr<AQ_Time> Tm() { return orCreate(measuredTime_); }
  void Tm(std::shared_ptr<AQ_Time> time) { measuredTime_ = std::move(time); }

 private:
  std::shared_ptr<AQ_Time> measuredTime_;
  std::shared_ptr<AQ_Time> emissionTime_;
  std::shared_ptr<AQ_Position> emissionPosition_;
};

}  // namespace aq
