#pragma once

#include <concepts>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <memory>
#include <string>
#include <string_view>
#include <type_traits>
#include <typeinfo>
#include <utility>
#include <variant>

#include "aq/core/error.h"
#include "aq/core/export.h"

namespace aq {

/// An integer type for numbers, not for booleans or characters.
template <class I>
concept Number = std::integral<I> && !std::same_as<I, bool> && !std::same_as<I, char> &&
                 !std::same_as<I, wchar_t> && !std::same_as<I, char8_t> &&
                 !std::same_as<I, char16_t> && !std::same_as<I, char32_t>;

/// A number, a boolean, text, a date or an object. It keeps the type that it was given, except
/// where the constructors say otherwise. An empty variant is neither a number nor text; converting
/// it throws.
class AQ_API Variant {
 public:
  enum class Type { Empty, Int16, Int32, Single, Double, Boolean, String, Date, Object };

  Variant() = default;
  Variant(std::int16_t value) : value_(value) {}
  Variant(std::int32_t value) : value_(value) {}
  Variant(float value) : value_(value) {}
  Variant(double value) : value_(value) {}
  Variant(std::string value) : value_(std::move(value)) {}
  Variant(std::string_view value) : value_(std::string(value)) {}
  Variant(const char* value) : value_(std::string(value)) {}
  Variant(std::nullptr_t) : value_(Object{}) {}

  template <std::same_as<bool> B>
  Variant(B value) : value_(value) {}

  Variant(long double value) : value_(static_cast<double>(value)) {}

  /// Other integers: one byte becomes 16 bits; larger types become 32 bits if the value fits,
  /// otherwise a double.
  template <Number I>
  Variant(I value) : value_(narrowed(value)) {}

  template <class E>
  requires std::is_enum_v<E> Variant(E value) : value_(static_cast<std::int32_t>(value)) {}

  /// Shares the object.
  template <class T>
  Variant(std::shared_ptr<T> object) : value_(Object{std::move(object), &typeid(T)}) {}

  /// A date value: days since 1899-12-30.
  [[nodiscard]] static Variant date(double days);

  [[nodiscard]] Type type() const { return static_cast<Type>(value_.index()); }
  [[nodiscard]] bool isEmpty() const { return type() == Type::Empty; }

  // The value converted to another type. Text must be a number and nothing else; for an integer
  // type, an optional sign and digits only. Numbers and dates converted to an integer type are
  // rounded to the nearest integer, halves to the even one; true is 1. Throws `TypeMismatch` for a
  // value that does not convert and `Overflow` outside the type's range.
  [[nodiscard]] double toDouble() const;
  [[nodiscard]] float toSingle() const;
  [[nodiscard]] std::int16_t toInt16() const;
  [[nodiscard]] std::int32_t toInt32() const;

  /// Text may also be "true" or "false", ignoring case.
  [[nodiscard]] bool toBoolean() const;

  /// The default text of a number, "True" or "False", `mm/dd/yyyy hh:mm:ss` for a date. Throws
  /// `InvalidValue` for a number that is not finite.
  [[nodiscard]] std::string toString() const;

  /// The object. Throws `ObjectNotSet` if the variant holds no object of this type.
  template <class T>
  [[nodiscard]] std::shared_ptr<T> toObject() const {
    const Object* const held = std::get_if<Object>(&value_);
    if (held == nullptr || held->object == nullptr || *held->type != typeid(T)) {
      throw Error(ErrorCode::ObjectNotSet, "the variant holds no object of this type");
    }
    return std::static_pointer_cast<T>(held->object);
  }

  friend bool operator==(const Variant&, const Variant&) = default;

 private:
  struct Date {
    double days;
    friend bool operator==(const Date&, const Date&) = default;
  };
  struct Object {
    std::shared_ptr<void> object;
    const std::type_info* type = nullptr;
    friend bool operator==(const Object& a, const Object& b) { return a.object == b.object; }
  };
  // In the order of `Type`.
  using Value = std::variant<std::monostate, std::int16_t, std::int32_t, float, double, bool,
                             std::string, Date, Object>;

  template <Number I>
  static Value narrowed(I value) {
    if constexpr (sizeof(I) == 1 || std::same_as<I, std::int16_t>) {
      return static_cast<std::int16_t>(value);
    } else if (std::in_range<std::int32_t>(value)) {
      return static_cast<std::int32_t>(value);
    } else {
      return static_cast<double>(value);
    }
  }

  Value value_;
};

}  // namespace aq
