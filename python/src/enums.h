#pragma once

#include "binding.h"

namespace aq::python {

/// Binds a described enumeration as an `IntEnum`, or as an `IntFlag` for flags. Members of an
/// unscoped enumeration also become members of the module.
template <class E>
void bindEnum(py::module_& module) {
  using Description = describe::Description<E>;
  constexpr bool combines = requires(E member) {
    { member | member } -> std::same_as<E>;
  };
  py::dict values;
  describe::forMembers<E>(
      [&](const auto& member) { values[member.name] = static_cast<std::int32_t>(member.value); });
  py::object type = py::module_::import("enum").attr(combines ? "IntFlag" : "IntEnum")(
      Description::name, values, py::arg("module") = "aq_data._core",
      py::arg("qualname") = Description::name);
  type.attr("__doc__") = Description::text;
  describe::forMembers<E>([&](const auto& member) {
    const py::object named = type.attr(member.name);
    named.attr("__doc__") = std::string(member.text);
    if (std::is_convertible_v<E, std::int32_t>) module.attr(member.name) = named;
  });
  module.attr(Description::name) = type;
  enumClass<E>() = type.release();
}

}  // namespace aq::python
