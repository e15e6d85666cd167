#pragma once

// How a class of the library becomes one of Python: properties as attributes, indexed ones as
// views, and what follows from the list of a class's settable properties: pickling, copying, repr.

#include <aq/detail/pointers.h>
#include <pybind11/pybind11.h>
#include <pybind11/stl.h>

#include <functional>
#include <memory>
#include <string>
#include <utility>

#include "casters.h"

namespace aq::python {

inline std::string typeText(const py::object& given) {
  return py::type::of(given).attr("__name__").cast<std::string>();
}

/// Any object with the attributes `LowBand` and `HighBand`.
class Banded {
 public:
  explicit Banded(const py::object& object)
      : low_(object.attr("LowBand").cast<std::int16_t>()),
        high_(object.attr("HighBand").cast<std::int16_t>()) {}
  [[nodiscard]] std::int16_t LowBand() const { return low_; }
  [[nodiscard]] std::int16_t HighBand() const { return high_; }

 private:
  std::int16_t low_;
  std::int16_t high_;
};

/// What `history.spectrum` gives: the values of one owner by number, read by a call or by `[]`.
template <class Owner, class Key, class Value>
struct Indexed {
  std::shared_ptr<Owner> owner;
};

template <class C>
class Bound : public py::class_<C, std::shared_ptr<C>> {
  using Object = std::shared_ptr<C>;

 public:
  Bound(const py::module_& module, const char* name, const char* doc)
      : py::class_<C, Object>(module, name, doc), module_(module), name_(name) {
    if constexpr (std::is_default_constructible_v<C>) this->def(py::init<>());
  }

  template <class Get>
  Bound& property(const char* name, Get (C::*get)() const, const char* doc) {
    this->def_property_readonly(name, get, doc);
    return *this;
  }
  template <class Get>
  Bound& property(const char* name, Get (C::*get)(), const char* doc) {
    this->def_property_readonly(name, get, doc);
    return *this;
  }
  template <class Get, class Set>
  Bound& property(const char* name, Get (C::*get)() const, void (C::*set)(Set), const char* doc) {
    return settable(name, get, set, doc);
  }
  template <class Get, class Set>
  Bound& property(const char* name, Get (C::*get)(), void (C::*set)(Set), const char* doc) {
    return settable(name, get, set, doc);
  }
  template <class Field>
  Bound& field(const char* name, Field C::*member, const char* doc) {
    this->def_readwrite(name, member, doc);
    fields_.append(name);
    return *this;
  }

  /// A property of any pair of functions.
  template <class Get, class Set>
  Bound& settable(const char* name, Get get, Set set, const char* doc) {
    this->def_property(name, get, set, doc);
    fields_.append(name);
    return *this;
  }

  /// `get(owner, key)` and `set(owner, key, value)`.
  template <class Key, class Value, class Get, class Set>
  Bound& view(const char* name, Get get, Set set, const char* doc) {
    using View = Indexed<C, Key, Value>;
    const auto read = [get](const View& view, Key key) -> Value {
      return std::invoke(get, *view.owner, key);
    };
    const auto viewName = "_" + name_.substr(3) + "_" + name;
    py::class_<View>(module_, viewName.c_str(), doc)
        .def("__call__", read, py::arg("number"))
        .def("__getitem__", read, py::arg("number"))
        .def(
            "__setitem__",
            [set](const View& view, Key key, Value value) {
              std::invoke(set, *view.owner, key, std::move(value));
            },
            py::arg("number"), py::arg("value"))
        .def("__repr__", [text = "<" + name_ + "." + name +
                                 ": by number, in () or []>"](const View&) { return text; })
        .attr("__iter__") = py::none();
    this->def_property_readonly(
        name, [](Object self) { return View{std::move(self)}; }, doc);
    return *this;
  }
  template <class Key, class Value, class Given>
  Bound& indexed(const char* name, Value (C::*get)(Key) const, void (C::*set)(Key, Given),
                 const char* doc) {
    return view<std::decay_t<Key>, Value>(name, get, set, doc);
  }
  template <class Key, class Value, class Given>
  Bound& indexed(const char* name, Value (C::*get)(Key), void (C::*set)(Key, Given),
                 const char* doc) {
    return view<std::decay_t<Key>, Value>(name, get, set, doc);
  }

  /// Ends a class that its settable properties describe in full.
  void record() {
    keepFields();
    this->def(py::pickle([fields = fields_](const py::object& self) { return state(self, fields); },
                         [fields = fields_](const py::tuple& given) {
                           auto made = std::make_shared<C>();
                           restore(py::cast(made), fields, given);
                           return made;
                         }));
    this->def("__repr__", [fields = fields_, name = name_](const py::object& self) {
      std::string text;
      for (const py::handle field : fields) {
        text += text.empty() ? "" : ", ";
        text += field.cast<std::string>() + "=";
        text += py::repr(self.attr(field)).template cast<std::string>();
      }
      return name + "(" + text + ")";
    });
  }

  /// Ends a class that holds more than its settable properties: `save(object)` gives what to keep
  /// beside them, `load(object, kept)` stores it again.
  template <class Save, class Load>
  void container(Save save, Load load) {
    keepFields();
    this->def(py::pickle(
        [fields = fields_, save](const py::object& self) {
          return py::make_tuple(state(self, fields), save(*self.cast<Object>()));
        },
        [fields = fields_, load](const py::tuple& given) {
          auto made = std::make_shared<C>();
          load(*made, given[1]);
          restore(py::cast(made), fields, given[0]);
          return made;
        }));
  }

 private:
  void keepFields() { this->attr("_fields") = py::tuple(fields_); }

  static py::tuple state(const py::object& self, const py::list& fields) {
    py::list values;
    for (const py::handle field : fields) values.append(self.attr(field));
    return py::tuple(values);
  }

  static void restore(const py::object& self, const py::list& fields, const py::tuple& values) {
    if (values.size() != fields.size()) throw py::value_error("a pickle of another version");
    for (std::size_t i = 0; i < fields.size(); ++i) {
      self.attr(py::object(fields[i])) = values[i];
    }
  }

  py::module_ module_;
  std::string name_;
  py::list fields_;
};

// One function a room, in the order in which they build on each other.
void bindCore(py::module_& module);
void bindMasking(py::module_& module);
void bindSpectral(py::module_& module);
void bindHistory(const py::module_& module);  // of the spectral room
void bindGeometry(py::module_& module);
void bindEmission(const py::module_& module);  // of the geometry room
void bindFiles(py::module_& module);
void bindCheck(py::module_& module);
void bindWritable(py::module_& module);

}  // namespace aq::python
