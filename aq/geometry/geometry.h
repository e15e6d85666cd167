#pragma once

#include <memory>
#include <utility>

#include "aq/core/export.h"
#include "aq/core/time.h"
#include "aq/detail/pointers.h"
#include "aq/geometry/position.h"

namespace aq {

/// The emission geometry of one measured record: when its sound was emitted, where the source was
/// then, and how the sound came to the microphone. Units are those of the program that fills it;
/// `emissionGeometry` gives metres, degrees and seconds.
class AQ_API AQ_Geometry {
 public:
  double SRe = 0;        ///< slant range at emission
  float THETAe = 0;      ///< first emission angle
  float BETAe = 0;       ///< second emission angle
  double Tprope = 0;     ///< propagation time from emission to measurement
  double debugTime = 0;  ///< free, for diagnostics; written and not read back, and not copied

  /// A deep copy, without `debugTime`: hosts rely on it. The objects are created here if not held.
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
