#pragma once

#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "tools/aqdata/session.h"

// Series of numbers in the form that the report page reads. Binary data is little-endian, in
// base64.
namespace aqdata::report {

[[nodiscard]] std::string base64(std::string_view bytes);

/// Packs numbers as multiples of `step`: as 16-bit or 32-bit integers or, if consecutive ones
/// differ by a constant, as the first number and that difference. If a number is too large or, with
/// `exact`, not within 1e-9 of a multiple, packs all numbers in single precision instead. NaN means
/// no value.
[[nodiscard]] Json packed(std::span<const double> numbers, double step, bool exact = false);

/// Packs numbers from 0 to 3, four per byte, the first one in the lowest bits.
[[nodiscard]] Json packedQuarters(std::string_view numbers);

/// Packs `value(element)` of each element.
template <class Elements, class Value>
Json packedFrom(const Elements& elements, double step, const Value& value) {
  std::vector<double> numbers;
  numbers.reserve(elements.size());
  for (const auto& element : elements) numbers.push_back(value(element));
  return packed(numbers, step);
}

}  // namespace aqdata::report
