#pragma once

// Series of objects with times or positions: their table columns, and the methods that every series
// has in Python. `all(series)` gives its objects.

#include "tables.h"

namespace aq::python {

// Columns of the time that `Time` returns: its time of day, relative time and date.
template <class Object, std::shared_ptr<AQ_Time> (Object::*Time)()>
constexpr Column<Object> todColumn(const char* name) {
  return {name, [](Object& o) { return (o.*Time)()->TODseconds(); },
          [](Object& o, double seconds) {
            (o.*Time)()->assignSeconds(seconds, (o.*Time)()->RelSeconds());
          },
          kFinite};
}

template <class Object, std::shared_ptr<AQ_Time> (Object::*Time)()>
constexpr Column<Object> relColumn(const char* name) {
  return {name, [](Object& o) { return (o.*Time)()->RelSeconds(); },
          [](Object& o, double seconds) {
            (o.*Time)()->assignSeconds((o.*Time)()->TODseconds(), seconds);
          },
          kFinite};
}

template <class Object, std::shared_ptr<AQ_Time> (Object::*Time)()>
constexpr Column<Object> dateColumn(const char* name) {
  return {name, [](Object& o) { return (o.*Time)()->CurrentDate(); },
          [](Object& o, double days) { (o.*Time)()->CurrentDate(days); }, kFinite};
}

template <class Object, auto Member>
constexpr Column<Object> memberColumn(const char* name) {
  return {name, [](Object& o) { return static_cast<double>(o.*Member); },
          [](Object& o, double value) {
            o.*Member = static_cast<std::decay_t<decltype(o.*Member)>>(value);
          }};
}

/// One of the three coordinates of the position that `Get` finds in an object.
template <class Object, AQ_Position& (*Get)(Object&), double (AQ_Position::*Read)() const,
          void (AQ_Position::*Write)(double)>
constexpr Column<Object> coordinate(const char* name) {
  return {name, [](Object& o) { return (Get(o).*Read)(); },
          [](Object& o, double value) { (Get(o).*Write)(value); }};
}

/// The methods of every series of objects in Python: length, iteration, table and repr.
template <class Series, class Object, class All>
void bindSeries(Bound<Series>& series, const char* name, const All& all,
                std::span<const Column<Object>> columns, const char* doc) {
  const auto size = [all](const Series& self) { return all(self).size(); };
  series.def("__len__", size)
      .def("__iter__", [all](const Series& self) { return py::iter(py::cast(all(self))); })
      .def(
          "to_numpy", [all, columns](const Series& self) { return tableOf(all(self), columns); },
          doc)
      .def("__repr__", [name, size](const Series& self) {
        return std::string("<") + name + ": " + std::to_string(size(self)) + " entries>";
      });
}

template <class Series, class Object>
using Put = void (Series::*)(std::int32_t, std::shared_ptr<Object>);

/// Adds `from_numpy` and pickling to a series whose objects are numbered from 1 without gaps.
template <class Series, class Object, class All>
void bindPlaced(Bound<Series>& series, const All& all, Put<Series, Object> put,
                std::span<const Column<Object>> columns) {
  const auto fill = [put](Series& self, std::vector<std::shared_ptr<Object>> objects) {
    std::int32_t number = 0;
    for (auto& object : objects) (self.*put)(++number, std::move(object));
  };
  series.def_static(
      "from_numpy",
      [columns, fill](const py::object& given) {
        auto made = std::make_shared<Series>();
        fill(*made, objectsFrom(given, columns));
        return made;
      },
      py::arg("columns"),
      "A new series, numbered from 1, from a table made by to_numpy, or a mapping of columns of "
      "shape (entries,).\n\nA missing column leaves zeros. Raises ValueError if no column has a "
      "known name, for an unknown name in a dictionary, for unequal lengths and for times that are "
      "not finite; TypeError for columns that are not numbers.\n\n>>> again = "
      "type(series).from_numpy(series.to_numpy())\n");
  series.container([all](const Series& self) { return all(self); },
                   [fill](Series& self, const py::handle& kept) {
                     fill(self, kept.cast<std::vector<std::shared_ptr<Object>>>());
                   });
}

}  // namespace aq::python
