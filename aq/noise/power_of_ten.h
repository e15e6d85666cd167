#pragma once

#include <cmath>

namespace aq {

/// 10^x by `exp2`, which takes a third of the time of `pow`.
inline double powerOfTen(double x) {
  constexpr double kLog2Of10 = 3.321928094887362347870319429489390;
  return std::exp2(x * kLog2Of10);
}

/// The base-10 logarithm of x from the binary one, also to save time.
inline double logarithmOfTen(double x) {
  constexpr double kLog10Of2 = 0.301029995663981195213738894724493;
  return std::log2(x) * kLog10Of2;
}

}  // namespace aq
