#pragma once

// Arrays of numbers in one pass over the objects. Two shapes: levels and masks, one row a record
// and one column a band; and tables, one row an object and one named column a property.

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

/// The array of a `numpy.ma` array has NaN where that hides a value; any other is as it was.
inline py::object shown(const py::object& given) {
  if (!py::isinstance(given, py::module_::import("numpy.ma").attr("MaskedArray"))) return given;
  return given.attr("astype")("f8").attr("filled")(std::numeric_limits<double>::quiet_NaN());
}

/// Throws `ValueError` for a cell that would lose something as an integer.
inline void checkWhole(const Doubles& cells) {
  for (const double cell : std::span(cells.data(), static_cast<std::size_t>(cells.size()))) {
    if (std::isfinite(cell) && std::trunc(cell) == cell) continue;
    throw py::value_error("expected whole numbers, found " +
                          py::str(py::float_(cell)).cast<std::string>());
  }
}

/// Numbers of one type in a row of memory, whatever their type and layout were; NaN where it is
/// missing. Throws `TypeError` for what is no number, `ValueError` for another count of dimensions
/// and for a fraction where integers are wanted.
template <class Number>
py::array_t<Number, py::array::c_style> numbersFrom(const py::object& given, py::ssize_t dimensions,
                                                    const char* wanted) {
  const auto array = py::array::ensure(shown(given));
  if (!array || std::string("iuf").find(array.dtype().kind()) == std::string::npos) {
    const std::string found = array ? "an array of " + py::str(array.dtype()).cast<std::string>()
                                    : py::str(py::type::of(given)).cast<std::string>();
    throw py::type_error(std::string("expected ") + wanted + ", found " + found);
  }
  if (array.ndim() != dimensions) {
    throw py::value_error(std::string("expected ") + wanted + ", found an array of " +
                          std::to_string(array.ndim()) + " dimensions");
  }
  if (std::is_integral_v<Number> && array.dtype().kind() == 'f') checkWhole(Doubles(array));
  return py::array_t<Number, py::array::c_style | py::array::forcecast>(array);
}

/// Record or band numbers, as many as `count`.
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
  throw py::value_error("the record number " + std::to_string(*twice) + " stands twice");
}

/// The numbers of `count` records: those given, else 1 and on.
inline std::vector<std::int16_t> recordNumbers(const py::object& given, py::ssize_t count) {
  if (given.is_none()) {
    return shortNumbers(py::module_::import("numpy").attr("arange")(1, count + 1), count,
                        "records");
  }
  auto numbers = shortNumbers(given, count, "one record number a row");
  checkOnce(numbers);
  return numbers;
}

inline void checkBands(std::int16_t low, py::ssize_t count) {
  if (!std::in_range<std::int16_t>(low + count - 1)) {
    throw py::value_error("the band number " + std::to_string(low + count - 1) +
                          " is beyond 16 bits");
  }
}

inline py::array_t<std::int16_t> numberArray(const std::vector<std::int16_t>& numbers) {
  return py::array_t<std::int16_t>(std::ssize(numbers), numbers.data());
}

/// The lowest and highest band that any of several objects has.
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

/// The object under `number`, nothing where there is none.
template <class Get>
auto found(const Get& get, std::int16_t number) -> decltype(get(number)) {
  try {
    return get(number);
  } catch (const Error&) {
    return nullptr;
  }
}

/// Objects under 16-bit numbers, in the order of their numbers.
template <class Object>
struct Numbered {
  std::vector<std::int16_t> numbers;
  std::vector<std::shared_ptr<Object>> objects;
};

/// All `count` objects that `get` finds: mostly they are numbered from 1 on.
template <class Object, class Get>
Numbered<Object> numbered(std::int32_t count, const Get& get) {
  Numbered<Object> all;
  const auto collect = [&](int from, int to) {
    for (int number = from; number <= to && std::ssize(all.objects) < count; ++number) {
      auto object = found(get, static_cast<std::int16_t>(number));
      if (!object) continue;
      all.numbers.push_back(static_cast<std::int16_t>(number));
      all.objects.push_back(std::move(object));
    }
  };
  collect(1, 32767);
  if (std::ssize(all.objects) == count) return all;
  all = {};
  collect(-32768, 32767);
  if (std::ssize(all.objects) == count) return all;
  throw Error(ErrorCode::ObjectNotSet, "an object is missing");
}

template <class Object>
struct Column {
  const char* name;
  double (*get)(Object&);
  void (*set)(Object&, double);
};

/// One row an object; the columns are named fields, so the table is a pandas frame at once.
template <class Object>
py::array tableOf(const std::vector<std::shared_ptr<Object>>& objects,
                  std::span<const Column<Object>> columns) {
  py::list names;
  for (const auto& column : columns) names.append(py::make_tuple(column.name, "f8"));
  py::array table(py::dtype::from_args(names), std::vector<py::ssize_t>{std::ssize(objects)});
  auto* cell = static_cast<double*>(table.mutable_data());
  for (const auto& object : objects) {
    for (const auto& column : columns) *cell++ = column.get(required(object));
  }
  return table;
}

/// Anything that gives a column of numbers by name: a table, a dictionary, a frame or a dataset.
class TableSource {
 public:
  template <class Object>
  TableSource(const py::object& given, std::span<const Column<Object>> columns) {
    py::object names = py::getattr(given, "dtype", py::none());
    names = py::getattr(names, "names", py::none());
    if (names.is_none()) names = given;
    if (!py::isinstance<py::iterable>(names) || !py::hasattr(given, "__getitem__")) {
      throw py::type_error("expected an array with named columns or a mapping of columns, found " +
                           py::str(py::type::of(given)).cast<std::string>());
    }
    py::list known;
    for (const auto& column : columns) {
      known.append(column.name);
      if (!names.contains(column.name)) continue;
      columns_.push_back(take(given, column.name));
      places_.push_back(static_cast<std::size_t>(&column - columns.data()));
    }
    if (columns_.empty()) {
      throw py::value_error("expected columns of " + py::str(known).cast<std::string>() +
                            ", found none of them");
    }
  }

  [[nodiscard]] py::ssize_t rows() const { return columns_.front().size(); }

  template <class Object>
  void fill(const std::vector<std::shared_ptr<Object>>& objects,
            std::span<const Column<Object>> columns) const {
    if (std::ssize(objects) != rows()) {
      throw py::value_error("expected " + std::to_string(objects.size()) + " rows, found " +
                            std::to_string(rows()));
    }
    for (std::size_t i = 0; i < columns_.size(); ++i) {
      const double* value = columns_[i].data();
      for (const auto& object : objects) columns[places_[i]].set(required(object), *value++);
    }
  }

 private:
  using Values = py::array_t<double, py::array::c_style>;

  Values take(const py::object& given, const char* name) {
    const auto wanted = std::string("a column ") + name + " of numbers";
    auto values = numbersFrom<double>(given[name], 1, wanted.c_str());
    if (!columns_.empty() && values.size() != rows()) {
      throw py::value_error(std::string("expected ") + std::to_string(rows()) + " rows in column " +
                            name + ", found " + std::to_string(values.size()));
    }
    return values;
  }

  std::vector<Values> columns_;
  std::vector<std::size_t> places_;
};

/// New objects, one a row.
template <class Object>
std::vector<std::shared_ptr<Object>> objectsFrom(const py::object& given,
                                                 std::span<const Column<Object>> columns) {
  const TableSource source(given, columns);
  std::vector<std::shared_ptr<Object>> objects(static_cast<std::size_t>(source.rows()));
  for (auto& object : objects) object = std::make_shared<Object>();
  source.fill(objects, columns);
  return objects;
}

}  // namespace aq::python
