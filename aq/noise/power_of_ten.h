#pragma once

#include <cmath>

namespace aq {

/// 10^x as a power of two, which takes the maths library a third of the time that a power of ten
/// takes.
inline double powerOfTen(double x) {
  constexpr double kLog2Of10 = 3.321928094887362347870319429489390;
  return std::exp2(x * kLog2Of10);
}

/// lg x from the binary logarithm, also to save time.
inline double logarithmOfTen(double x) {
  constexpr double kLog10Of2 = 0.301029995663981195213738894724493;
  return std::log2(x) * kLog10Of2;
}

}  // namespace aq
