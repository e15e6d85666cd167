#pragma once

#include <array>
#include <charconv>
#include <concepts>
#include <cstddef>
#include <limits>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <type_traits>
#include <vector>

#include "aq/core/file_failure.h"
#include "aq/core/variant.h"

// Describes the object model to hosts, such as the Python package and the component for Windows:
// each class, enumeration, function and member once, with its name and its meaning. A host calls
// `forMembers<C>` with a visitor that accepts every kind of member below; types come from the
// pointers to members and functions. There is no field for initial values: hosts read them from a
// new object. Members are in the interface's order, and new ones are added at the end, since some
// hosts identify a member by its position.

namespace aq::describe {

/// The unit of a number and the range in which it is meaningful. Setters accept any value of the
/// type unless the text says otherwise.
struct Quantity {
  std::string_view unit;
  double low = -std::numeric_limits<double>::infinity();
  double high = std::numeric_limits<double>::infinity();
};

/// Marks a number that is a date: days since 1899-12-30, with the time of day as the fraction.
struct Date {};
/// Marks text that names a file or a folder.
struct FileName {};
/// The word under which hosts list a value, such as `project`. It never changes.
struct Key {
  std::string_view word;
};

inline constexpr Quantity kDecibels{"dB"};
inline constexpr Quantity kSeconds{"s"};
inline constexpr Quantity kSecondsOfDay{"s", 0, 86400};
inline constexpr Quantity kBand{"band", 2, 50};
inline constexpr Quantity kLastGoodBand{"band", 28, 49};
inline constexpr Quantity kRecord{"record", -32768, 32767};
inline constexpr Quantity kRecordOf32Bits{"record", -2147483648.0, 2147483647};
inline constexpr Quantity kPlace{"index", 1, 2147483647};
inline constexpr Quantity kCount{"count", 0, 32767};
inline constexpr Quantity kRecords{"count", 0, 2147483647};
/// Metres, unless the files or the host use another unit of length: nothing is converted.
inline constexpr Quantity kLength{"m"};
inline constexpr Quantity kAngle{"degree"};
inline constexpr Quantity kOfTheMetric{"dB, PNdB, TPNdB, band or flags"};

/// What is said about a member or parameter, apart from its name and type.
struct About {
  std::string_view text;   ///< without a full stop at the end
  Quantity quantity = {};  ///< with a unit only if the member is a number
  bool isDate = false;
  bool isFileName = false;
  std::string_view key = {};

  constexpr void add(const Quantity& given) { quantity = given; }
  constexpr void add(Date /*date*/) {
    quantity = {"days since 1899-12-30"};
    isDate = true;
  }
  constexpr void add(FileName /*name*/) { isFileName = true; }
  constexpr void add(Key given) { key = given.word; }
};

/// A description whose type shows whether it has a unit.
template <class... Parts>
struct Told : About {};

template <class... Parts>
constexpr Told<Parts...> about(std::string_view text, Parts... parts) {
  Told<Parts...> all{{text}};
  (all.add(parts), ...);
  return all;
}

/// Text such as "dB", "s, from 0", "band, 2 to 50"; empty if there is no unit.
[[nodiscard]] inline std::string quantityText(const Quantity& quantity) {
  constexpr double kNoEnd = std::numeric_limits<double>::infinity();
  std::string text(quantity.unit);
  const auto append = [&](std::string_view word, double number) {
    std::array<char, 32> digits{};
    char* const past = std::to_chars(digits.data(), digits.data() + digits.size(), number).ptr;
    text.append(word).append(digits.data(), past);
  };
  if (quantity.low != -kNoEnd) append(quantity.high == kNoEnd ? ", from " : ", ", quantity.low);
  if (quantity.high != kNoEnd) append(" to ", quantity.high);
  return text;
}

// The kinds of member.

/// Read by `get` and set by `set`; read-only if `set` is `nullptr`. For an object, a
/// non-const getter creates one if there is none, and the setter shares the one it is given.
template <class Get, class Set>
struct Property {
  const char* name;
  Get get;
  Set set;
  About about;
};

/// A property that gives other properties' values in another form.
template <class Get, class Set>
struct Form : Property<Get, Set> {};

/// A data member.
template <class Member>
struct Field {
  const char* name;
  Member member;
  About about;
};

struct Parameter {
  const char* name;
  About about;
  bool isOptional = false;
};

/// A property that can only be set.
template <class Set>
struct Setter {
  const char* name;
  Set set;
  Parameter value;
  About about;
};

/// Values selected by a number or a type: `get(key)`, `set(key, value)`.
template <class Get, class Set>
struct Indexed {
  const char* name;
  Get get;
  Set set;
  Parameter key;
  About about;
};

/// A member function. Its arguments that are non-const references to a pointer or an enumeration
/// are outputs.
template <class Call, std::size_t Count>
struct Method {
  const char* name;
  Call call;
  std::array<Parameter, Count> parameters;
  About about;
};

/// A method called as `call(object, other)`, where `other` is any object with `LowBand` and
/// `HighBand`.
template <class Call>
struct Banded {
  const char* name;
  Call call;
  Parameter other;
  About about;
};

/// A method that takes either an index or a key.
template <class ByPlace, class ByKey>
struct Keyed {
  const char* name;
  ByPlace byPlace;
  ByKey byKey;
  About about;
};

/// A library function that belongs to no class.
template <class Call, std::size_t Count>
struct Function {
  const char* name;
  Call call;
  std::array<Parameter, Count> parameters;
  About about;
};

/// A member of an enumeration.
template <class E>
struct Enumerator {
  const char* name;
  E value;
  std::string_view text;
};

/// The type of the values in an optional or a list; any other type as it is.
template <class T>
struct One {
  using Type = T;
};
template <class T>
struct One<std::optional<T>> : One<T> {};
template <class T>
struct One<std::vector<T>> : One<T> {};
template <class T>
struct One<std::span<T>> : One<std::remove_const_t<T>> {};
template <class T>
using OneOf = typename One<std::remove_cvref_t<T>>::Type;

template <class T>
inline constexpr bool isNumber = (std::is_arithmetic_v<OneOf<T>> &&
                                  !std::same_as<OneOf<T>, bool>) ||
                                 std::same_as<OneOf<T>, Variant>;

template <class... Parts>
inline constexpr bool hasQuantity = ((std::same_as<Parts, Quantity> || std::same_as<Parts, Date>) ||
                                     ...);

/// Checks that a number has a unit and that nothing else has one.
template <class T, class... Parts>
constexpr void saysItsUnit() {
  static_assert(!isNumber<T> || hasQuantity<Parts...>, "a number without a unit");
  static_assert(isNumber<T> || !hasQuantity<Parts...>, "a unit for something that is not a number");
}

template <class... Parts>
struct In : Parameter {};

template <class... Parts>
constexpr In<Parts...> in(const char* name, std::string_view text, Parts... parts) {
  return {{name, about(text, parts...)}};
}

template <class... Parts>
constexpr In<Parts...> optionally(const char* name, std::string_view text, Parts... parts) {
  return {{name, about(text, parts...), true}};
}

template <class Argument, class... Parts>
constexpr void fits(const In<Parts...>& /*parameter*/) {
  saysItsUnit<Argument, Parts...>();
}

/// The functions that describe members; each calls `visit` with one of the kinds above.
template <class C, class Visit, bool IsEnumeration = std::is_enum_v<C>>
class Members {
 public:
  explicit Members(Visit& visit) : visit_(visit) {}

  template <class Get, class... Parts>
  Members& property(const char* name, Get (C::*get)() const, std::string_view text,
                    Parts... parts) {
    saysItsUnit<Get, Parts...>();
    return take(Property<decltype(get), std::nullptr_t>{name, get, nullptr, about(text, parts...)});
  }
  template <class Get, class... Parts>
  Members& property(const char* name, Get (C::*get)(), std::string_view text, Parts... parts) {
    saysItsUnit<Get, Parts...>();
    return take(Property<decltype(get), std::nullptr_t>{name, get, nullptr, about(text, parts...)});
  }
  template <class Get, class Set, class... Parts>
  Members& property(const char* name, Get (C::*get)() const, void (C::*set)(Set),
                    std::string_view text, Parts... parts) {
    saysItsUnit<Get, Parts...>();
    return take(Property<decltype(get), decltype(set)>{name, get, set, about(text, parts...)});
  }
  template <class Get, class Set, class... Parts>
  Members& property(const char* name, Get (C::*get)(), void (C::*set)(Set), std::string_view text,
                    Parts... parts) {
    saysItsUnit<Get, Parts...>();
    return take(Property<decltype(get), decltype(set)>{name, get, set, about(text, parts...)});
  }

  /// Describes `lastFailure`, which every file class has.
  Members& lastFailure() {
    using Get = const std::optional<FileFailure>& (C::*)() const;
    return take(Property<Get, std::nullptr_t>{"lastFailure", &C::lastFailure, nullptr,
                                              about("Why the last call could not read or write its "
                                                    "file; no object if it succeeded or raised")});
  }

  template <class Get, class Set>
  Members& form(const char* name, Get (C::*get)() const, void (C::*set)(Set),
                std::string_view text) {
    return take(Form<decltype(get), decltype(set)>{{name, get, set, about(text)}});
  }

  template <class Value, class... Parts>
  Members& field(const char* name, Value C::*member, std::string_view text, Parts... parts) {
    saysItsUnit<Value, Parts...>();
    return take(Field<Value C::*>{name, member, about(text, parts...)});
  }

  /// A field whose description several classes share.
  template <class Value, class... Parts>
  Members& field(const char* name, Value C::*member, const Told<Parts...>& told) {
    saysItsUnit<Value, Parts...>();
    return take(Field<Value C::*>{name, member, told});
  }

  template <class Set, class... Parts>
  Members& setter(const char* name, void (C::*set)(Set), std::string_view text,
                  const In<Parts...>& value) {
    fits<Set>(value);
    return take(Setter<decltype(set)>{name, set, value, about(text)});
  }

  template <class Key, class Value, class Given, class... KeyParts, class... Parts>
  Members& indexed(const char* name, Value (C::*get)(Key) const, void (C::*set)(Key, Given),
                   const In<KeyParts...>& key, std::string_view text, Parts... parts) {
    saysItsUnit<Value, Parts...>();
    fits<Key>(key);
    return take(Indexed<decltype(get), decltype(set)>{name, get, set, key, about(text, parts...)});
  }
  template <class Key, class Value, class Given, class... KeyParts, class... Parts>
  Members& indexed(const char* name, Value (C::*get)(Key), void (C::*set)(Key, Given),
                   const In<KeyParts...>& key, std::string_view text, Parts... parts) {
    saysItsUnit<Value, Parts...>();
    fits<Key>(key);
    return take(Indexed<decltype(get), decltype(set)>{name, get, set, key, about(text, parts...)});
  }

  template <class Result, class... Arguments, class... Given>
  Members& method(const char* name, Result (C::*call)(Arguments...), std::string_view text,
                  const Given&... parameters) {
    return called<Result, Arguments...>(name, call, text, parameters...);
  }
  template <class Result, class... Arguments, class... Given>
  Members& method(const char* name, Result (C::*call)(Arguments...) const, std::string_view text,
                  const Given&... parameters) {
    return called<Result, Arguments...>(name, call, text, parameters...);
  }

  template <class Call>
  Members& banded(const char* name, Call call, std::string_view text, const In<>& other) {
    return take(Banded<Call>{name, call, other, about(text)});
  }

  template <class ByPlace, class ByKey>
  Members& keyed(const char* name, ByPlace byPlace, ByKey byKey, std::string_view text) {
    return take(Keyed<ByPlace, ByKey>{name, byPlace, byKey, about(text)});
  }

  template <class Result, class... Arguments, class... Parts, class... Given>
  Members& function(const char* name, Result (*call)(Arguments...), const Told<Parts...>& told,
                    const Given&... parameters) {
    saysItsUnit<Result, Parts...>();
    static_assert(sizeof...(Arguments) == sizeof...(Given),
                  "the description and the call have different numbers of parameters");
    (fits<Arguments>(parameters), ...);
    return take(
        Function<decltype(call), sizeof...(Given)>{name, call, {Parameter(parameters)...}, told});
  }

 private:
  template <class Result, class... Arguments, class Call, class... Given>
  Members& called(const char* name, Call call, std::string_view text, const Given&... parameters) {
    static_assert(!isNumber<Result>, "a method has no unit, so it cannot return a number");
    static_assert(sizeof...(Arguments) == sizeof...(Given),
                  "the number of parameters differs from that of the call");
    (fits<Arguments>(parameters), ...);
    return take(
        Method<Call, sizeof...(Given)>{name, call, {Parameter(parameters)...}, about(text)});
  }

  template <class Kind>
  Members& take(const Kind& kind) {
    visit_(kind);
    return *this;
  }

  Visit& visit_;
};

/// The function that describes the members of an enumeration.
template <class E, class Visit>
class Members<E, Visit, true> {
 public:
  explicit Members(Visit& visit) : visit_(visit) {}

  Members& member(const char* name, E value, std::string_view text) {
    visit_(Enumerator<E>{name, value, text});
    return *this;
  }

 private:
  Visit& visit_;
};

/// A class, an enumeration or the functions of a folder: its `name`, its `members` and, except for
/// functions, a `text`. A class may have a `number`, by which hosts identify it and which is never
/// reused.
template <class C>
struct Description;

template <class C>
concept Described = requires {
  Description<C>::name;
};

/// Classes, enumerations or sets of functions, in dependency order.
template <class... C>
struct List {};

/// Calls `visit.operator()<C>()` for each class C of a list.
template <class... C, class Visit>
void forClasses(List<C...> /*list*/, const Visit& visit) {
  (visit.template operator()<C>(), ...);
}

/// Calls `visit(member)` for each member in the description of `C`, in order.
template <Described C, class Visit>
void forMembers(Visit&& visit) {
  Members<C, std::remove_reference_t<Visit>> members(visit);
  Description<C>::members(members);
}

}  // namespace aq::describe
