#pragma once

// Tables of numbers: one row per object and one named column per property.

#include "arrays.h"

namespace aq::python {

/// The values that the cells of a column may hold, and the test for them.
struct Cells {
  const char* wanted;
  bool (*fit)(double);
};

constexpr Cells kAnyNumber{"a number", [](double) { return true; }};
constexpr Cells kFinite{"a finite number", [](double cell) { return std::isfinite(cell); }};
constexpr Cells kSingle{"a single-precision number", [](double cell) {
                          return std::isinf(cell) || !std::isinf(static_cast<float>(cell));
                        }};
template <class Number>
constexpr Cells kWhole{"a whole number", [](double cell) {
                         return std::trunc(cell) == cell &&
                                cell >= double{std::numeric_limits<Number>::min()} &&
                                cell <= double{std::numeric_limits<Number>::max()};
                       }};

template <class Object>
struct Column {
  const char* name;
  double (*get)(Object&);
  void (*set)(Object&, double);
  Cells cells = kAnyNumber;
};

/// One row per object; the columns are named fields, so the table converts directly to a pandas
/// frame.
template <class Object>
py::array tableOf(const std::vector<std::shared_ptr<Object>>& objects,
                  std::span<const Column<Object>> columns) {
  py::list names;
  for (const auto& column : columns) names.append(py::make_tuple(column.name, "f8"));
  py::array table(py::dtype::from_args(names), std::vector<py::ssize_t>{std::ssize(objects)});
  auto* cell = static_cast<double*>(table.mutable_data());
  for (const auto& object : objects) {
    for (const auto& column : columns) *cell++ = column.get(orThrow(object));
  }
  return table;
}

/// Anything that has columns of numbers by name: a table, a dictionary, a frame or a dataset.
class TableSource {
 public:
  template <class Object>
  TableSource(const py::object& given, std::span<const Column<Object>> columns) {
    py::object names = py::getattr(given, "dtype", py::none());
    names = py::getattr(names, "names", py::none());
    if (names.is_none()) names = given;
    if (!py::isinstance<py::iterable>(names) || !py::hasattr(given, "__getitem__")) {
      throw py::type_error("expected an array with named columns or a mapping of columns, found " +
                           typeText(given));
    }
    checkNames(names, columns);
    for (const auto& column : columns) {
      if (!names.contains(column.name)) continue;
      columns_.push_back(take(given, column.name));
      places_.push_back(static_cast<std::size_t>(&column - columns.data()));
    }
  }

  [[nodiscard]] py::ssize_t rows() const { return columns_.front().size(); }

  /// Stores all cells, or none if one does not fit. Messages name a row by its record number
  /// or, without record numbers, by its index, counted from 1.
  template <class Object>
  void fill(const std::vector<std::shared_ptr<Object>>& objects,
            std::span<const Column<Object>> columns,
            const std::vector<std::int16_t>& records = {}) const {
    if (std::ssize(objects) != rows()) {
      throw py::value_error("expected " + std::to_string(objects.size()) + " rows, found " +
                            std::to_string(rows()));
    }
    for (std::size_t i = 0; i < columns_.size(); ++i) check(i, columns[places_[i]], records);
    for (std::size_t i = 0; i < columns_.size(); ++i) {
      const double* value = columns_[i].data();
      for (const auto& object : objects) columns[places_[i]].set(orThrow(object), *value++);
    }
  }

 private:
  using Values = py::array_t<double, py::array::c_style>;

  /// A dictionary is usually written by hand, so an unknown name in it is an error.
  template <class Object>
  static void checkNames(const py::object& names, std::span<const Column<Object>> columns) {
    py::list known;
    bool any = false;
    for (const auto& column : columns) {
      known.append(column.name);
      any = any || names.contains(column.name);
    }
    const std::string wanted = "expected columns of " + py::str(known).cast<std::string>();
    if (!any) throw py::value_error(wanted + ", found none of them");
    if (!py::isinstance<py::dict>(names)) return;
    for (const py::handle name : names) {
      if (known.contains(name)) continue;
      throw py::value_error(wanted + ", found " + py::repr(name).cast<std::string>());
    }
  }

  template <class Object>
  void check(std::size_t place, const Column<Object>& column,
             const std::vector<std::int16_t>& records) const {
    for (py::ssize_t row = 0; row < rows(); ++row) {
      const double cell = columns_[place].at(row);
      if (column.cells.fit(cell)) continue;
      const std::string where =
          records.empty() ? "row " + std::to_string(row + 1)
                          : "record " + std::to_string(records[static_cast<std::size_t>(row)]);
      throw py::value_error("column " + std::string(column.name) + ", " + where + ": expected " +
                            column.cells.wanted + ", found " + numberText(cell));
    }
  }

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

/// New objects, one per row.
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
