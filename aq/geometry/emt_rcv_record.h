#pragma once

#include <memory>
#include <utility>

#include "aq/core/time.h"
#include "aq/detail/pointers.h"
#include "aq/geometry/position.h"

namespace aq {

/// One emission and reception pair: where the aircraft was when it emitted the sound that the
/// microphone received later. Numbers are 0 until set.
class AQ_EmtRcvRecord {
 public:
  double SR = 0;     ///< slant range, m
  double Tprop = 0;  ///< propagation time, s

  /// The time of emission. Created on first read; setting shares the caller's object.
  std::shared_ptr<AQ_Time> T() { return orCreate(emission_); }
  void T(std::shared_ptr<AQ_Time> time) { emission_ = std::move(time); }

  /// The time of reception. Created on first read; setting shares the caller's object.
  std::shared_ptr<AQ_Time> Tr() { return orCreate(reception_); }
  void Tr(std::shared_ptr<AQ_Time> time) { reception_ = std::move(time); }

  /// Created on first read; setting shares the caller's object.
  std::shared_ptr<AQ_Position> ACPosition() { return orCreate(position_); }
  void ACPosition(std::shared_ptr<AQ_Position> position) { position_ = std::move(position); }

 private:
  std::shared_ptr<AQ_Time> emission_;
  std::shared_ptr<AQ_Time> reception_;
  std::shared_ptr<AQ_Position> position_;
};

}  // namespace aq
