#pragma once

#include <cstdint>
#include <memory>
#include <utility>

#include "aq/core/time.h"

namespace aq {

/// Summary values for one point of a flight track; the application defines their exact meaning.
/// Setters store any value; until set, numbers are 0 and times are null.
class AQ_SPointTrk {
 public:
  // Times: source overhead, maximum level, and two that the application defines.
  [[nodiscard]] std::shared_ptr<AQ_Time> TOH() const { return overhead_; }
  void TOH(std::shared_ptr<AQ_Time> time) { overhead_ = std::move(time); }
  [[nodiscard]] std::shared_ptr<AQ_Time> TMAX() const { return maximum_; }
  void TMAX(std::shared_ptr<AQ_Time> time) { maximum_ = std::move(time); }
  [[nodiscard]] std::shared_ptr<AQ_Time> T1() const { return first_; }
  void T1(std::shared_ptr<AQ_Time> time) { first_ = std::move(time); }
  [[nodiscard]] std::shared_ptr<AQ_Time> T2() const { return second_; }
  void T2(std::shared_ptr<AQ_Time> time) { second_ = std::move(time); }

  // Lateral offset and altitude in metres, angles in degrees, or as the application defines them.
  [[nodiscard]] float YOFF() const { return lateralOffset_; }
  void YOFF(float offset) { lateralOffset_ = offset; }
  [[nodiscard]] float PHI() const { return phi_; }
  void PHI(float angle) { phi_ = angle; }
  [[nodiscard]] float CYANG() const { return cyAngle_; }
  void CYANG(float angle) { cyAngle_ = angle; }
  [[nodiscard]] float ALT() const { return altitude_; }
  void ALT(float altitude) { altitude_ = altitude; }
  /// Ground speed, kn.
  [[nodiscard]] float GSPDKTS() const { return groundSpeed_; }
  void GSPDKTS(float speed) { groundSpeed_ = speed; }

  // The numbers of the first record, the last record and the record of the maximum.
  [[nodiscard]] std::int16_t FIRST() const { return firstRecord_; }
  void FIRST(std::int16_t record) { firstRecord_ = record; }
  [[nodiscard]] std::int16_t LAST() const { return lastRecord_; }
  void LAST(std::int16_t record) { lastRecord_ = record; }
  // In parentheses, since some systems' headers define a macro of this name.
  [[nodiscard]] std::int16_t(MAX)() const { return maximumRecord_; }
  void(MAX)(std::int16_t record) { maximumRecord_ = record; }

 private:
  std::shared_ptr<AQ_Time> overhead_;
  std::shared_ptr<AQ_Time> maximum_;
  std::shared_ptr<AQ_Time> first_;
  std::shared_ptr<AQ_Time> second_;
  float lateralOffset_ = 0;
  float phi_ = 0;
  float cyAngle_ = 0;
  float altitude_ = 0;
  float groundSpeed_ = 0;
  std::int16_t firstRecord_ = 0;
  std::int16_t lastRecord_ = 0;
  std::int16_t maximumRecord_ = 0;
};

}  // namespace aq
