#pragma once

#include <array>
#include <cmath>
#include <cstddef>

#include "aq/text/level_code.h"

namespace aq {

/// 10^x as a power of two, which the mathematics library computes in a third of the time.
inline double powerOfTen(double x) {
  constexpr double kLog2Of10 = 3.321928094887362347870319429489390;
  return std::exp2(x * kLog2Of10);
}

/// lg x from the binary logarithm, for the same reason.
inline double logarithmOfTen(double x) {
  constexpr double kLog10Of2 = 0.301029995663981195213738894724493;
  return std::log2(x) * kLog10Of2;
}

/// 10^(slope L) for every level L that has a code, correct to a few units in the last place: the
/// product of two numbers from short tables.
class PowersOfLevels {
 public:
  explicit PowersOfLevels(double slope) {
    for (std::size_t i = 0; i < high_.size(); ++i) {
      high_[i] = powerOfTen(slope * (static_cast<double>(i * kLows) - kZero) / 100);
    }
    for (std::size_t i = 0; i < low_.size(); ++i) {
      low_[i] = powerOfTen(slope * static_cast<double>(i) / 100);
    }
  }

  [[nodiscard]] double of(LevelCode code) const {
    const int place = code + kZero;
    const auto at = static_cast<std::size_t>(place);
    return high_[at / kLows] * low_[at % kLows];
  }

 private:
  static constexpr int kZero = 32768;  // the index of 0 dB
  static constexpr std::size_t kLows = 256;
  std::array<double, 256> high_{};
  std::array<double, kLows> low_{};
};

}  // namespace aq
