#pragma once

// Arrays of numbers in one pass over the objects: levels and masks, one row per record and one
// column per band.

#include <pybind11/numpy.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <span>
#include <string>
#include <vector>

#include "binding.h"

namespace aq::python {

using Doubles = py::array_t<double, py::array::c_style | py::array::forcecast>;

/// Replaces the masked values of a `numpy.ma` array with NaN; returns any other object unchanged.
inline py::object shown(const py::object& given) {
  if (!py::isinstance(given, py::module_::import("numpy.ma").attr("MaskedArray"))) return given;
  return given.attr("astype")("f8").attr("filled")(std::numeric_limits<double>::quiet_NaN());
}

/// Converts any object to a numpy array. Exceptions from the conversion propagate, such as that of
/// a lazy array whose file was deleted.
inline py::array arrayFrom(const py::object& given) {
  return py::module_::import("numpy").attr("asarray")(shown(given));
}

inline std::string numberText(double number) {
  return py::str(py::float_(number)).cast<std::string>();
}

/// Throws `ValueError` for a cell that an integer cannot hold exactly.
inline void checkWhole(const Doubles& cells) {
  for (const double cell : std::span(cells.data(), static_cast<std::size_t>(cells.size()))) {
    if (!std::isfinite(cell) || std::trunc(cell) != cell) {
      throw py::value_error("expected whole numbers, found " + numberText(cell));
    }
    if (std::abs(cell) < 0x1p63) continue;
    throw py::value_error("the number " + numberText(cell) + " is beyond 64 bits");
  }
}

/// Contiguous numbers of one type, converted from any numeric type and layout; masked values become
/// NaN. Throws `TypeError` for values that are not numbers, `ValueError` for a wrong number of
/// dimensions and, for integers, for a value that is not whole or is beyond 64 bits.
template <class Number>
py::array_t<Number, py::array::c_style> numbersFrom(const py::object& given, py::ssize_t dimensions,
                                                    const char* wanted) {
  const py::array array = arrayFrom(given);
  const char kind = array.dtype().kind();
  if (std::string_view("iuf").find(kind) == std::string_view::npos) {
    throw py::type_error(std::string("expected ") + wanted + ", found an array of " +
                         py::str(array.dtype()).cast<std::string>());
  }
  if (array.ndim() != dimensions) {
    throw py::value_error(std::string("expected ") + wanted + ", found an array of " +
                          std::to_string(array.ndim()) + " dimensions");
  }
  if (std::is_integral_v<Number> && kind != 'i') checkWhole(Doubles(array));
  return py::array_t<Number, py::array::c_style | py::array::forcecast>(array);
}

/// Exactly `count` record or band numbers.
inline std::vector<std::int16_t> shortNumbers(const py::object& given, py::ssize_t count,
                                              const char* wanted) {
  const auto numbers = numbersFrom<std::int64_t>(given, 1, wanted);
  if (numbers.size() != count) {
    throw py::value_error(std::string("expected ") + wanted + ", " + std::to_string(count) +
                          " of them, found " + std::to_string(numbers.size()));
  }
  std::vector<std::int16_t> all;
  for (const std::int64_t number : std::span(numbers.data(), static_cast<std::size_t>(count))) {
    if (!std::in_range<std::int16_t>(number)) {
      throw py::value_error("the number " + std::to_string(number) + " is beyond 16 bits");
    }
    all.push_back(static_cast<std::int16_t>(number));
  }
  return all;
}

inline void checkOnce(std::vector<std::int16_t> numbers) {
  std::sort(numbers.begin(), numbers.end());
  const auto twice = std::adjacent_find(numbers.begin(), numbers.end());
  if (twice == numbers.end()) return;
  throw py::value_error("the record number " + std::to_string(*twice) + " appears twice");
}

/// The given numbers of `count` records; 1 to `count` if none are given.
inline std::vector<std::int16_t> recordNumbers(const py::object& given, py::ssize_t count) {
  if (given.is_none()) {
    return shortNumbers(py::module_::import("numpy").attr("arange")(1, count + 1), count,
                        "records");
  }
  auto numbers = shortNumbers(given, count, "one record number per row");
  checkOnce(numbers);
  return numbers;
}

inline void checkBands(std::int16_t low, py::ssize_t count) {
  if (low < 0) throw py::value_error("the band number " + std::to_string(low) + " is below 0");
  if (!std::in_range<std::int16_t>(low + count - 1)) {
    throw py::value_error("the band number " + std::to_string(low + count - 1) +
                          " is beyond 16 bits");
  }
}

inline py::array_t<std::int16_t> numberArray(const std::vector<std::int16_t>& numbers) {
  return py::array_t<std::int16_t>(std::ssize(numbers), numbers.data());
}

/// The lowest and highest band of several objects.
template <class Objects>
NumberRange bandsOf(const Objects& objects) {
  NumberRange bands;
  for (const auto& object : objects) {
    if (object->HighBand() < object->LowBand()) continue;
    bands.widen(object->LowBand());
    bands.widen(object->HighBand());
  }
  return bands;
}

inline std::string bandsText(const NumberRange& bands) {
  if (bands.high < bands.low) return "no bands";
  return "bands " + std::to_string(bands.low) + " to " + std::to_string(bands.high);
}

inline py::ssize_t countOf(const NumberRange& range) {
  return range.high < range.low ? 0 : range.high - range.low + 1;
}

inline std::vector<std::int16_t> numbersOf(const NumberRange& range) {
  std::vector<std::int16_t> numbers;
  for (int number = range.low; number <= range.high; ++number) {
    numbers.push_back(static_cast<std::int16_t>(number));
  }
  return numbers;
}

/// Objects with 16-bit numbers, in ascending order.
template <class Object>
struct Numbered {
  std::vector<std::int16_t> numbers;
  std::vector<std::shared_ptr<Object>> objects;
};

[[noreturn]] inline void failNumber(ErrorCode code, std::int32_t number, const char* what) {
  throw Error(code, "number " + std::to_string(number) + what);
}

/// All objects of a series, for arrays that have a 16-bit number per row.
template <class Object, class Series>
Numbered<Object> numbered(const Series& series) {
  Numbered<Object> all;
  for (const auto& [number, object] : series) {
    if (!object) failNumber(ErrorCode::ObjectNotSet, number, " is None");
    if (!std::in_range<std::int16_t>(number)) {
      failNumber(ErrorCode::Overflow, number, " is beyond 16 bits");
    }
    all.numbers.push_back(static_cast<std::int16_t>(number));
    all.objects.push_back(object);
  }
  return all;
}

}  // namespace aq::python
