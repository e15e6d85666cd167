#pragma once

#include <cstddef>
#include <cstring>

namespace aq {

// If the compiler supports vectors, `Lanes` is a vector of two doubles, one per record; every
// processor with vectors operates on that size in one instruction. Otherwise it is a single double.
// Code that works on lanes selects values with `?:`; for vectors, that evaluates both sides.
#if defined(__GNUC__)
using Lanes = double __attribute__((vector_size(16)));
#else
using Lanes = double;
#endif

inline constexpr std::size_t kLanes = sizeof(Lanes) / sizeof(double);

[[nodiscard]] inline Lanes lanesAt(const double* from) {
  Lanes lanes;
  std::memcpy(&lanes, from, sizeof(lanes));
  return lanes;
}

/// Lanes, each holding the number that `numberAt` returns for it.
template <class NumberAt>
[[nodiscard]] Lanes lanesOf(const NumberAt& numberAt) {
#if defined(__GNUC__)
  return Lanes{numberAt(0), numberAt(1)};
#else
  return numberAt(0);
#endif
}

inline void putLanes(double* to, const Lanes& lanes) { std::memcpy(to, &lanes, sizeof(lanes)); }

[[nodiscard]] inline double laneOf(const Lanes& lanes, std::size_t lane) {
  double each[kLanes];
  putLanes(each, lanes);
  return each[lane];
}

/// The larger of two numbers or lanes; `b` where either is NaN.
template <class Number>
[[nodiscard]] Number largerOf(const Number& a, const Number& b) {
  return a > b ? a : b;
}

/// The smaller of two numbers or lanes; `b` where either is NaN.
template <class Number>
[[nodiscard]] Number smallerOf(const Number& a, const Number& b) {
  return a < b ? a : b;
}

}  // namespace aq
