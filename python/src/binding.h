#pragma once

// Turns a described library class into a Python class: properties become attributes, indexed
// properties become views; pickling, copying and repr use the list of settable properties.

#include <aq/describe/description.h>
#include <aq/detail/pointers.h>
#include <pybind11/pybind11.h>
#include <pybind11/stl.h>

#include <functional>
#include <memory>
#include <stdexcept>
#include <string>
#include <string_view>
#include <utility>

#include "casters.h"

namespace aq::python {

inline std::string typeText(const py::object& given) {
  return py::type::of(given).attr("__name__").cast<std::string>();
}

/// The range of any object with the attributes `LowBand` and `HighBand`.
class BandRange {
 public:
  explicit BandRange(const py::object& object)
      : low_(object.attr("LowBand").cast<std::int16_t>()),
        high_(object.attr("HighBand").cast<std::int16_t>()) {}
  [[nodiscard]] std::int16_t LowBand() const { return low_; }
  [[nodiscard]] std::int16_t HighBand() const { return high_; }

 private:
  std::int16_t low_;
  std::int16_t high_;
};

/// The type of indexed properties such as `history.spectrum`: one object's values by number, read
/// with a call or with `[]` and set with `[]`.
template <class Owner, class Key, class Value>
struct Indexed {
  std::shared_ptr<Owner> owner;
};

/// The text of a description, followed by the unit and range of a number.
inline std::string docOf(const describe::About& about) {
  std::string doc(about.text);
  const std::string quantity = describe::quantityText(about.quantity);
  if (!quantity.empty()) doc.append(" [").append(quantity).append("]");
  return doc;
}

/// The docstring of a member whose form in Python differs from that in C++.
template <class C>
std::string docOf(std::string_view name) {
  std::string doc;
  describe::forMembers<C>([&](const auto& member) {
    if (member.name == name) doc = docOf(member.about);
  });
  if (doc.empty()) throw std::logic_error("no description of " + std::string(name));
  return doc;
}

template <class C>
class Bound : public py::class_<C, std::shared_ptr<C>> {
  using Object = std::shared_ptr<C>;

 public:
  /// Binds all described members that have the same form in Python as in C++.
  explicit Bound(const py::module_& module)
      : Bound(module, describe::Description<C>::name, describe::Description<C>::text) {
    describe::forMembers<C>(*this);
  }
  Bound(const py::module_& module, const char* name, const char* doc)
      : py::class_<C, Object>(module, name, doc), module_(module), name_(name) {
    if constexpr (std::is_default_constructible_v<C>) this->def(py::init<>());
  }

  template <class Get, class Set>
  void operator()(const describe::Property<Get, Set>& property) {
    const std::string doc = docOf(property.about) + sharing(property);
    if constexpr (std::is_null_pointer_v<Set>) {
      this->def_property_readonly(property.name, byValue(property.get), doc.c_str());
    } else {
      this->def_property(property.name, property.get, property.set, doc.c_str());
      fields_.append(property.name);
    }
  }
  template <class Get>
  void operator()(const describe::Form<Get, void (C::*)(std::string_view)>& form) {
    this->def_property(
        form.name, form.get,
        [set = form.set](C& self, const std::string& text) { (self.*set)(text); },
        docOf(form.about).c_str());
  }
  template <class Member>
  void operator()(const describe::Field<Member>& field) {
    this->def_readwrite(field.name, field.member, docOf(field.about).c_str());
    fields_.append(field.name);
  }
  template <class Set>
  void operator()(const describe::Setter<Set>& setter) {
    this->def(setter.name, setter.set, py::arg(setter.value.name), docOf(setter.about).c_str());
  }
  template <class Key, class Value, class Given>
  void operator()(const describe::Indexed<Value (C::*)(Key) const, void (C::*)(Key, Given)>& view) {
    bindView<std::decay_t<Key>, Value>(view);
  }
  template <class Key, class Value, class Given>
  void operator()(const describe::Indexed<Value (C::*)(Key), void (C::*)(Key, Given)>& view) {
    bindView<std::decay_t<Key>, Value>(view);
  }
  /// Leaves the methods of file classes, which take paths and return what they read, to
  /// `BoundFile`.
  template <class Call, std::size_t Count>
  void operator()(const describe::Method<Call, Count>& method) {
    if constexpr (!std::is_base_of_v<FileClass, C>) {
      std::apply(
          [&](const auto&... parameters) {
            this->def(method.name, method.call, py::arg(parameters.name)...,
                      docOf(method.about).c_str());
          },
          method.parameters);
    }
  }
  template <class Call>
  void operator()(const describe::Banded<Call>& banded) {
    this->def(
        banded.name,
        [call = banded.call](const C& self, const py::object& other) {
          return call(self, BandRange(other));
        },
        py::arg(banded.other.name), docOf(banded.about).c_str());
  }

  /// Adds pickling and a repr to a class that its settable properties describe fully.
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

  /// Adds pickling to a class that holds more than its settable properties: `save(object)` returns
  /// the rest, and `load(object, kept)` restores it.
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
  /// The getter, returning a copy where the library returns a reference to its own object.
  template <class Get>
  static auto byValue(Get get) {
    if constexpr (std::is_reference_v<std::invoke_result_t<Get, C&>>) {
      return [get](const C& self) { return (self.*get)(); };
    } else {
      return get;
    }
  }

  template <class Get, class Set>
  static const char* sharing(const describe::Property<Get, Set>& /*property*/) {
    constexpr bool isObject = requires(std::invoke_result_t<Get, C&> object) {
      object.use_count();
    };
    if constexpr (!isObject) {
      return "";
    } else if constexpr (std::is_invocable_v<Get, const C&>) {
      return std::is_null_pointer_v<Set> ? "" : ". Setting shares the object";
    } else {
      return std::is_null_pointer_v<Set> ? ". Created on first read"
                                         : ". Created on first read; setting shares the object";
    }
  }

  /// Binds `view(number)`, `view[number]` and `view[number] = value`.
  template <class Key, class Value, class Get, class Set>
  void bindView(const describe::Indexed<Get, Set>& indexed) {
    using View = Indexed<C, Key, Value>;
    const std::string doc = docOf(indexed.about);
    const auto read = [get = indexed.get](const View& view, Key key) -> Value {
      return std::invoke(get, *view.owner, key);
    };
    const auto viewName = "_" + name_.substr(3) + "_" + indexed.name;
    py::class_<View>(module_, viewName.c_str(), doc.c_str())
        .def("__call__", read, py::arg("number"))
        .def("__getitem__", read, py::arg("number"))
        .def(
            "__setitem__",
            [set = indexed.set](const View& view, Key key, Value value) {
              std::invoke(set, *view.owner, key, std::move(value));
            },
            py::arg("number"), py::arg("value"))
        .def("__repr__", [text = "<" + name_ + "." + indexed.name +
                                 ": by number, in () or []>"](const View&) { return text; })
        .attr("__iter__") = py::none();
    this->def_property_readonly(
        indexed.name, [](Object self) { return View{std::move(self)}; }, doc.c_str());
  }

  void keepFields() { this->attr("_fields") = py::tuple(fields_); }

  static py::tuple state(const py::object& self, const py::list& fields) {
    py::list values;
    for (const py::handle field : fields) values.append(self.attr(field));
    return py::tuple(values);
  }

  static void restore(const py::object& self, const py::list& fields, const py::tuple& values) {
    if (values.size() != fields.size()) throw py::value_error("a pickle of another version");
    const AnyNumber asItWas;
    for (std::size_t i = 0; i < fields.size(); ++i) {
      self.attr(py::object(fields[i])) = values[i];
    }
  }

  py::module_ module_;
  std::string name_;
  py::list fields_;
};

// Each binds one part of the library, after the parts whose classes it uses.
void bindCore(py::module_& module);
void bindMasking(py::module_& module);
void bindSpectral(py::module_& module);
void bindHistory(const py::module_& module);  // of the spectral folder
void bindGeometry(py::module_& module);
void bindEmission(const py::module_& module);  // of the geometry folder
void bindFiles(py::module_& module);
void bindRecording(py::module_& module);
void bindCheck(py::module_& module);
void bindNoise(py::module_& module);
void bindWork(py::module_& module);
void bindWritable(py::module_& module);

}  // namespace aq::python
