#pragma once

#include <aq/aq.h>
#include <aq/describe/core.h>

#include <concepts>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <type_traits>
#include <vector>

// Types and initial values in words.

namespace reference {

template <class T>
struct Words;  // for pointers, optional values and lists

template <class T>
std::string typeWords();

inline std::string linked(const std::string& name) {
  std::string anchor = name;
  for (char& c : anchor) c = c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
  return "[" + name + "](#" + anchor + ")";
}

template <class T>
struct Words<std::shared_ptr<T>> {
  static std::string text() { return typeWords<T>(); }
};
template <class T>
struct Words<std::optional<T>> {
  static std::string text() { return typeWords<T>(); }
};
template <class T>
struct Words<T*> {
  static std::string text() { return typeWords<T>(); }
};
template <class T>
struct Words<std::vector<T>> {
  static std::string text() { return "list of " + typeWords<T>(); }
};
template <class T>
struct Words<std::span<T>> {
  static std::string text() { return "list of " + typeWords<T>(); }
};
template <class T>
struct Words<aq::Collection<T>> {
  static std::string text() { return linked("Collection") + " of " + typeWords<T>(); }
};

/// A type in words, such as "16-bit integer", "text" or "[AQ_Time](#aq_time)".
template <class T>
std::string typeWords() {
  using Value = std::remove_cvref_t<T>;
  if constexpr (requires { Words<Value>::text(); }) {
    return Words<Value>::text();
  } else if constexpr (aq::describe::Described<Value>) {
    return linked(aq::describe::Description<Value>::name);
  } else if constexpr (std::is_convertible_v<Value, std::string_view>) {
    return "text";
  } else if constexpr (std::same_as<Value, aq::Variant>) {
    return "any value";
  } else if constexpr (std::same_as<Value, bool>) {
    return "truth";
  } else if constexpr (std::same_as<Value, float>) {
    return "single";
  } else if constexpr (std::same_as<Value, double>) {
    return "double";
  } else if constexpr (std::same_as<Value, std::size_t>) {
    return "integer";
  } else {
    static_assert(std::is_integral_v<Value>, "a type without words");
    return std::to_string(8 * sizeof(Value)) + "-bit integer";
  }
}

/// The initial value of a member, in words.
template <class T>
std::string valueWords(const T& value) {
  if constexpr (std::is_enum_v<T>) {
    std::string name = std::to_string(static_cast<std::int32_t>(value));
    aq::describe::forMembers<T>([&](const auto& member) {
      if (member.value == value) name = member.name;
    });
    return name;
  } else if constexpr (std::is_arithmetic_v<T>) {
    return aq::Variant(value).toString();
  } else if constexpr (std::same_as<T, aq::Variant>) {
    return value.isEmpty() ? "empty" : value.toString();
  } else if constexpr (std::same_as<T, std::string>) {
    return value.empty() ? "empty" : value;
  } else if constexpr (requires { value.size(); }) {
    return "empty";
  } else {
    return value ? "an object" : "none";
  }
}

}  // namespace reference
