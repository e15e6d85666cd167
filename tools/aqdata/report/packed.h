#pragma once

#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "tools/aqdata/session.h"

// Series of numbers as a page holds them: little-endian integers or single precision, in base64.
namespace aqdata::report {

[[nodiscard]] std::string base64(std::string_view bytes);

/// Numbers rounded to multiples of `step`, as integers of 16 or 32 bits, or as the first one and a
/// difference if that is always the same; in single precision if they are too large, or, with
/// `exact`, if one is no multiple, to 1e-9. NaN is no value.
[[nodiscard]] Json packed(std::span<const double> numbers, double step, bool exact = false);

/// Numbers from 0 to 3, four a byte, the first one lowest.
[[nodiscard]] Json packedQuarters(std::string_view numbers);

/// The same, of what `value` gives for each element.
template <class Elements, class Value>
Json packedFrom(const Elements& elements, double step, const Value& value) {
  std::vector<double> numbers;
  numbers.reserve(elements.size());
  for (const auto& element : elements) numbers.push_back(value(element));
  return packed(numbers, step);
}

}  // namespace aqdata::report
