#pragma once

#include <concepts>
#include <limits>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <type_traits>
#include <utility>
#include <vector>

#include "aq/core/collection.h"
#include "aq/core/error.h"
#include "aq/describe/enumerations.h"
#include "aq/files/file_kind.h"
#include "component/class_table.h"
#include "component/values.h"

// Converts C++ values to host values, and back.

namespace aq::com {

/// Text that may quote file names.
struct Message {
  std::string text;
};

/// The type of the entries of a collection.
template <class T>
struct CollectionEntry;
template <class T>
struct CollectionEntry<Collection<T>> {
  using Type = T;
};
template <class T>
concept ACollection = requires {
  typename CollectionEntry<T>::Type;
};
template <class T>
concept Shared = requires(T value) {
  typename T::element_type;
  value.use_count();
};

template <class T>
T fromHost(const VARIANT& given, TextKind kind);

/// The library's collection that `given` holds, or a new one with the entries of the host's array
/// or collection; null for Nothing.
template <ACollection C>
std::shared_ptr<C> collectionFrom(const VARIANT& given, TextKind kind) {
  if (isNoObject(given)) return nullptr;
  if (isObjectOf(given, tableOf<C>())) {
    return std::static_pointer_cast<C>(objectOf(given, tableOf<C>()));
  }
  auto made = std::make_shared<C>();
  for (const Value& entry : entriesOf(given)) {
    made->Add(fromHost<typename CollectionEntry<C>::Type>(entry, kind));
  }
  return made;
}

/// A value of type `T`, which is not a reference.
template <class T>
T fromHost(const VARIANT& given, TextKind kind) {
  if constexpr (std::same_as<T, Variant>) {
    return variantOf(given, kind);
  } else if constexpr (std::same_as<T, std::string>) {
    return stringOf(given, kind);
  } else if constexpr (std::same_as<T, Message>) {
    return {stringOf(given, TextKind::Name)};
  } else if constexpr (std::same_as<T, double>) {
    return given.vt == VT_R8 ? given.dblVal : variantOf(given, kind).toDouble();
  } else if constexpr (std::same_as<T, float>) {
    return variantOf(given, kind).toSingle();
  } else if constexpr (std::same_as<T, bool>) {
    return variantOf(given, kind).toBoolean();
  } else if constexpr (std::is_enum_v<T>) {
    return static_cast<T>(variantOf(given, kind).toInt32());
  } else if constexpr (std::same_as<T, std::int16_t>) {
    return given.vt == VT_I2 ? given.iVal : variantOf(given, kind).toInt16();
  } else if constexpr (std::same_as<T, std::int32_t>) {
    return variantOf(given, kind).toInt32();
  } else if constexpr (std::same_as<T, std::uint8_t>) {
    const std::int32_t number = variantOf(given, kind).toInt32();
    if (number < 0 || number > 255) throw Error(ErrorCode::Overflow, "a number outside 0 to 255");
    return static_cast<std::uint8_t>(number);
  } else {
    using C = typename T::element_type;
    if constexpr (ACollection<C>) {
      return collectionFrom<C>(given, kind);
    } else {
      return std::static_pointer_cast<C>(objectOf(given, tableOf<C>()));
    }
  }
}

template <class T>
inline constexpr bool isVector = false;
template <class T>
inline constexpr bool isVector<std::vector<T>> = true;
template <class T>
inline constexpr bool isOptional = false;
template <class T>
inline constexpr bool isOptional<std::optional<T>> = true;

/// Stores a value in `to`, which must be empty.
template <class T>
void toHost(VARIANT& to, const T& value, TextKind kind, bool isDate = false) {
  if constexpr (std::same_as<T, Variant>) {
    setVariant(to, value);
  } else if constexpr (std::convertible_to<T, std::string_view>) {
    setText(to, value, kind);
  } else if constexpr (std::same_as<T, Message>) {
    setText(to, value.text, TextKind::Name);
  } else if constexpr (std::same_as<T, FileKind>) {
    describe::forMembers<FileKind>([&](const auto& member) {
      if (member.value == value) setText(to, member.name, kind);
    });
  } else if constexpr (std::same_as<T, double>) {
    to.dblVal = value;
    to.vt = isDate ? VT_DATE : VT_R8;
  } else if constexpr (std::same_as<T, std::uint8_t>) {
    to.bVal = value;
    to.vt = VT_UI1;
  } else if constexpr (std::is_enum_v<T>) {
    setVariant(to, static_cast<std::int32_t>(value));
  } else if constexpr (std::same_as<T, std::size_t>) {
    if (!std::in_range<std::int32_t>(value))
      throw Error(ErrorCode::Overflow, "a number above 2^31");
    setVariant(to, static_cast<std::int32_t>(value));
  } else if constexpr (std::is_arithmetic_v<T>) {
    setVariant(to, value);
  } else if constexpr (Shared<T>) {
    setObject(to, value, tableOf<typename T::element_type>());
  } else if constexpr (isOptional<T>) {
    if (value) {
      toHost(to, *value, kind);
    } else if constexpr (std::is_class_v<typename T::value_type>) {
      setObject(to, nullptr, tableOf<typename T::value_type>());
    }
  } else if constexpr (isVector<T>) {
    using Entry = typename T::value_type;
    constexpr bool isNumber = std::is_arithmetic_v<Entry>;
    using Kept = std::conditional_t<isNumber, double, std::shared_ptr<Entry>>;
    auto made = std::make_shared<Collection<Kept>>();
    for (const Entry& entry : value) {
      if constexpr (isNumber) {
        made->Add(static_cast<double>(entry));
      } else {
        made->Add(std::make_shared<Entry>(entry));
      }
    }
    setObject(to, std::move(made), tableOf<Collection<Kept>>());
  } else {
    setObject(to, std::make_shared<T>(value), tableOf<T>());
  }
}

/// An argument of a call as the host passed it, with its position and the kind of its text.
struct Given {
  VARIANTARG* at;  ///< null if the host left it out
  std::size_t place;
  TextKind kind;
};

/// Runs `read`; a `Fault` that it throws names the argument.
template <class Read>
auto reading(const Given& given, const Read& read) {
  try {
    return read();
  } catch (const Fault& fault) {
    throw Fault{fault.code, given.place};
  }
}

template <class T>
std::shared_ptr<T> required(std::shared_ptr<T> object) {
  if (object == nullptr) throw Error(ErrorCode::ObjectNotSet, "an object is required, not Nothing");
  return object;
}

/// An argument that C++ takes by value or by const reference.
template <class A>
class Argument {
  using T = std::conditional_t<std::same_as<std::remove_cvref_t<A>, std::string_view>, std::string,
                               std::remove_cvref_t<A>>;
  static constexpr bool isObject = std::is_class_v<T> && !Shared<T> && !std::same_as<T, Variant> &&
                                   !std::same_as<T, std::string> && !std::same_as<T, Message>;
  using Kept = std::conditional_t<isObject, std::shared_ptr<T>, T>;

 public:
  explicit Argument(const Given& given)
      : value_(reading(given, [&]() -> Kept {
          if constexpr (isObject) {
            return required(fromHost<Kept>(*given.at, given.kind));
          } else {
            return isMissing(given.at) ? Kept() : fromHost<Kept>(*given.at, given.kind);
          }
        })) {}
  decltype(auto) get() const {
    if constexpr (isObject) {
      return *value_;
    } else {
      return (value_);
    }
  }
  void finish() {}

 private:
  Kept value_;
};

/// An optional object.
template <class T>
class Argument<const T*> {
 public:
  explicit Argument(const Given& given)
      : object_(reading(given, [&] {
          return isMissing(given.at) ? nullptr
                                     : fromHost<std::shared_ptr<T>>(*given.at, given.kind);
        })) {}
  const T* get() const { return object_.get(); }
  void finish() {}

 private:
  std::shared_ptr<T> object_;
};

/// Numbers from an array or from anything that For Each visits, or a single number.
/// Empty entries become NaN.
template <>
class Argument<std::span<const double>> {
 public:
  explicit Argument(const Given& given)
      : numbers_(reading(given, [&]() -> std::vector<double> {
          if (isMissing(given.at)) return {};
          if (!isList(*given.at)) return {fromHost<double>(*given.at, given.kind)};
          std::vector<double> numbers;
          for (const Value& entry : entriesOf(*given.at)) numbers.push_back(numberOf(entry));
          return numbers;
        })) {}
  std::span<const double> get() const { return numbers_; }
  void finish() {}

 private:
  static bool isList(const VARIANT& given) {
    const VARIANT& value = given.vt == (VT_BYREF | VT_VARIANT) ? *given.pvarVal : given;
    return (value.vt & VT_ARRAY) != 0 || (value.vt & VT_TYPEMASK) == VT_DISPATCH;
  }
  static double numberOf(const VARIANT& entry) {
    return entry.vt == VT_EMPTY ? std::numeric_limits<double>::quiet_NaN()
                                : fromHost<double>(entry, TextKind::Plain);
  }

  std::vector<double> numbers_;
};

/// An argument that receives a result: the host's variable keeps its value if the call returns no
/// object.
template <class T>
class Argument<std::shared_ptr<T>&> {
 public:
  explicit Argument(const Given& given) : variable_(isMissing(given.at) ? nullptr : given.at) {
    if (variable_ != nullptr && !isObjectVariable(*variable_)) {
      throw Fault{DISP_E_TYPEMISMATCH, given.place};
    }
  }
  std::shared_ptr<T>& get() { return object_; }
  void finish() {
    if (variable_ == nullptr || object_ == nullptr) return;
    Value made;
    setObject(made, object_, tableOf<T>());
    writeBack(*variable_, made);
  }

 private:
  VARIANTARG* variable_;
  std::shared_ptr<T> object_;
};

template <class E>
requires std::is_enum_v<E>
class Argument<E&> {
 public:
  explicit Argument(const Given& given) : variable_(given.at) {
    if (!isNumberVariable(*variable_)) throw Fault{DISP_E_TYPEMISMATCH, given.place};
  }
  E& get() { return number_; }
  void finish() {
    Value made;
    setVariant(made, static_cast<std::int32_t>(number_));
    writeBack(*variable_, made);
  }

 private:
  VARIANTARG* variable_;
  E number_{};
};

}  // namespace aq::com
