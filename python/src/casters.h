#pragma once

// Conversion of plain values between Python and the library. Include this before any code that
// casts text, since pybind11 would use its own text caster there.

#include <aq/aq.h>
#include <aq/describe/enumerations.h>
#include <pybind11/cast.h>

#include <limits>
#include <string>

namespace aq::python {

namespace py = pybind11;

/// A file name in the system's encoding: text, bytes or anything with `__fspath__` in Python.
struct Path {
  std::string name;
};

/// The enumeration's Python class. It lives as long as the interpreter.
template <class E>
py::handle& enumClass() {
  static py::handle type;
  return type;
}

/// While an object of this type exists, enumerations accept any number in this thread.
struct AnyNumber {
  static inline thread_local bool inForce = false;

  AnyNumber() { inForce = true; }
  ~AnyNumber() { inForce = false; }
  AnyNumber(const AnyNumber&) = delete;
  AnyNumber& operator=(const AnyNumber&) = delete;
};

}  // namespace aq::python

namespace pybind11::detail {

/// The library's text is bytes of unknown encoding: bytes that are not UTF-8 become surrogates and
/// come back unchanged.
template <>
class type_caster<std::string> {
 public:
  PYBIND11_TYPE_CASTER(std::string, const_name("str"));

  bool load(handle source, bool /*convert*/) {
    if (!PyUnicode_Check(source.ptr())) return false;
    const auto encoded = reinterpret_steal<bytes>(
        PyUnicode_AsEncodedString(source.ptr(), "utf-8", "surrogateescape"));
    if (!encoded) throw error_already_set();
    char* data = nullptr;
    Py_ssize_t size = 0;
    if (PyBytes_AsStringAndSize(encoded.ptr(), &data, &size) != 0) throw error_already_set();
    value.assign(data, static_cast<std::size_t>(size));
    return true;
  }

  static handle cast(const std::string& text, return_value_policy /*policy*/, handle /*parent*/) {
    const auto size = static_cast<Py_ssize_t>(text.size());
    PyObject* const decoded = PyUnicode_DecodeUTF8(text.data(), size, "surrogateescape");
    if (decoded == nullptr) throw error_already_set();
    return decoded;
  }
};

template <>
class type_caster<aq::python::Path> {
 public:
  PYBIND11_TYPE_CASTER(aq::python::Path, const_name("Path"));

  bool load(handle source, bool /*convert*/) {
    PyObject* encoded = nullptr;
    if (PyUnicode_FSConverter(source.ptr(), &encoded) == 0) {
      if (PyErr_ExceptionMatches(PyExc_TypeError) == 0) throw error_already_set();
      PyErr_Clear();
      return false;
    }
    const auto owner = reinterpret_steal<bytes>(encoded);
    value.name = PyBytes_AS_STRING(owner.ptr());
    return true;
  }
};

/// None, truth values, numbers and text; an integer beyond 32 bits is stored as a double.
template <>
class type_caster<aq::Variant> {
 public:
  PYBIND11_TYPE_CASTER(aq::Variant, const_name("Value"));

  bool load(handle source, bool /*convert*/) {
    PyObject* const object = source.ptr();
    if (object == Py_None) {
      value = aq::Variant();
    } else if (PyBool_Check(object)) {
      value = aq::Variant(object == Py_True);
    } else if (PyUnicode_Check(object)) {
      value = aq::Variant(source.cast<std::string>());
    } else if (PyIndex_Check(object) != 0) {
      return loadInteger(reinterpret_steal<pybind11::object>(PyNumber_Index(object)));
    } else {
      return loadDouble(object);
    }
    return true;
  }

  static handle cast(const aq::Variant& given, return_value_policy policy, handle parent) {
    switch (given.type()) {
      case aq::Variant::Type::Int16:
      case aq::Variant::Type::Int32: return PyLong_FromLong(given.toInt32());
      case aq::Variant::Type::Single:
      case aq::Variant::Type::Double:
      case aq::Variant::Type::Date: return PyFloat_FromDouble(given.toDouble());
      case aq::Variant::Type::Boolean: return PyBool_FromLong(given.toBoolean() ? 1 : 0);
      case aq::Variant::Type::String:
        return type_caster<std::string>::cast(given.toString(), policy, parent);
      case aq::Variant::Type::Empty:
      case aq::Variant::Type::Object: break;
    }
    return none().release();
  }

 private:
  bool loadInteger(const pybind11::object& number) {
    if (!number) {  // an array of more than one number, for instance
      PyErr_Clear();
      return false;
    }
    int overflow = 0;
    const long long integer = PyLong_AsLongLongAndOverflow(number.ptr(), &overflow);
    if (overflow != 0) return loadDouble(number.ptr());
    value = aq::Variant(integer);
    return true;
  }

  bool loadDouble(PyObject* object) {
    if (PyNumber_Check(object) == 0) return false;
    const double number = PyFloat_AsDouble(object);
    if (number == -1.0 && PyErr_Occurred() != nullptr) {
      PyErr_Clear();
      return false;
    }
    value = aq::Variant(number);
    return true;
  }
};

template <class E>
concept NamedEnum = std::is_enum_v<E> && aq::describe::Described<E>;

/// Whether a number is a member of the enumeration, or a combination of its flags.
template <class E>
bool isMember(std::int32_t number) {
  constexpr bool combines = requires(E member) {
    { member | member } -> std::same_as<E>;
  };
  std::int32_t flags = 0;
  bool named = false;
  aq::describe::forMembers<E>([&](const auto& member) {
    const auto value = static_cast<std::int32_t>(member.value);
    flags |= value;
    named = named || value == number;
  });
  return named || (combines && (number & ~flags) == 0);
}

/// Members of a Python enumeration, or their numbers. The library takes any number; one that is not
/// a member has no word in a file, so Python accepts it only when restoring an object.
template <class E>
class type_caster<E, enable_if_t<NamedEnum<E>>> {
 public:
  PYBIND11_TYPE_CASTER(E, const_name(aq::describe::Description<E>::name));

  bool load(handle source, bool /*convert*/) {
    if (PyIndex_Check(source.ptr()) == 0) return false;
    const Py_ssize_t number = PyNumber_AsSsize_t(source.ptr(), PyExc_OverflowError);
    if (number == -1 && PyErr_Occurred() != nullptr) PyErr_Clear();
    if (!std::in_range<std::int32_t>(number)) return false;
    const auto small = static_cast<std::int32_t>(number);
    if (!aq::python::AnyNumber::inForce && !isMember<E>(small)) return false;
    value = static_cast<E>(small);
    return true;
  }

  static handle cast(E member, return_value_policy /*policy*/, handle /*parent*/) {
    const auto number =
        reinterpret_steal<object>(PyLong_FromLong(static_cast<std::int32_t>(member)));
    PyObject* const named = PyObject_CallOneArg(aq::python::enumClass<E>().ptr(), number.ptr());
    if (named != nullptr) return named;
    PyErr_Clear();
    return number.inc_ref();
  }
};

}  // namespace pybind11::detail
