#pragma once

#include <cmath>

namespace aq {

/// 10^x, by the power of two, which the mathematics library has in a third of the time.
inline double powerOfTen(double x) {
  constexpr double kLog2Of10 = 3.321928094887362347870319429489390;
  return std::exp2(x * kLog2Of10);
}

}  // namespace aq
