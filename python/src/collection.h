#pragma once

#include <aq/describe/core.h>

#include <string>
#include <string_view>

#include "binding.h"

namespace aq::python {

/// Binds a collection with its own methods, which count from 1, and as a Python sequence, which
/// counts from 0.
template <class T>
void bindCollection(const py::module_& module, const char* name) {
  using List = Collection<T>;
  const auto place = [](const List& list, py::ssize_t index) {
    const py::ssize_t count = list.Count();
    if (index < -count || index >= count) {
      throw py::index_error("no entry " + std::to_string(index) + " in a collection of " +
                            std::to_string(count));
    }
    return static_cast<std::int32_t>(index < 0 ? index + count + 1 : index + 1);
  };
  const auto filled = [](const py::iterable& values) {
    auto list = std::make_shared<List>();
    for (const py::handle value : values) list->Add(value.cast<T>());
    return list;
  };
  const std::string about = describe::Description<List>::text;
  Bound<List> bound(module, name,
                    (about + ".\n\nItem and Remove count from 1; [] and iteration are those of a "
                             "Python sequence.")
                        .c_str());
  bound.def(py::init([filled](const py::iterable& values) { return filled(values); }),
            py::arg("values"));
  bound.def(
      "Add",
      [](List& list, T value, const std::optional<std::string>& key) {
        key ? list.Add(std::move(value), *key) : list.Add(std::move(value));
      },
      py::arg("value"), py::arg("key") = py::none(), docOf<List>("Add").c_str());
  bound.def(
      "Item", [](const List& list, std::int32_t at) { return list.Item(at); }, py::arg("place"),
      docOf<List>("Item").c_str());
  bound.def(
      "Item", [](const List& list, const std::string& key) { return list.Item(key); },
      py::arg("key"));
  bound.def(
      "Remove", [](List& list, std::int32_t at) { list.Remove(at); }, py::arg("place"),
      docOf<List>("Remove").c_str());
  bound.def(
      "Remove", [](List& list, const std::string& key) { list.Remove(key); }, py::arg("key"));
  bound.def_property_readonly("Count", &List::Count, docOf<List>("Count").c_str());
  bound.def("__len__", &List::Count);
  bound.def("__getitem__",
            [place](const List& list, py::ssize_t index) { return list.Item(place(list, index)); });
  bound.def("__getitem__", [](const List& list, const std::string& key) { return list.Item(key); });
  bound.def("__setitem__", [place](List& list, py::ssize_t index, T value) {
    list.Item(place(list, index)) = std::move(value);
  });
  // Iterates over a copy: the collection may change or be destroyed during a loop.
  bound.def("__iter__", [](const List& list) -> py::iterator {
    return py::iter(py::list(py::cast(std::vector<T>(list.begin(), list.end()))));
  });
  bound.def("__repr__", [shownName = std::string(name)](const py::object& self) {
    return shownName + "(" + py::repr(py::list(self)).cast<std::string>() + ")";
  });
  bound.def(py::pickle(
      [](const py::object& self) { return py::make_tuple(py::list(self)); },
      [filled](const py::tuple& state) { return filled(state[0].cast<py::iterable>()); }));
  py::implicitly_convertible<py::list, List>();
  py::implicitly_convertible<py::tuple, List>();
}

}  // namespace aq::python
