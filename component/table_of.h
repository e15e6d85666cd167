#pragma once

#include <algorithm>
#include <array>
#include <string>
#include <tuple>

#include "component/convert.h"
#include "component/extras.h"
#include "component/model.h"

// Makes the table of a class from its description.

namespace aq::com {

inline std::wstring widened(std::string_view name) { return {name.begin(), name.end()}; }

/// Calls `run` with the host's arguments, and returns its results to the host.
template <class Result, class... As, class F>
void callWith(const Call& call, [[maybe_unused]] std::span<const TextKind> kinds,
              TextKind resultKind, const F& run) {
  [[maybe_unused]] std::size_t place = 0;
  [[maybe_unused]] const auto next = [&] {
    const std::size_t at = place++;
    return Given{call.given[at], at, kinds[at]};
  };
  std::tuple<Argument<As>...> arguments{Argument<As>(next())...};
  std::apply(
      [&](auto&... each) {
        if constexpr (std::is_void_v<Result>) {
          run(each.get()...);
        } else {
          toHost<std::remove_cvref_t<Result>>(call.result, run(each.get()...), resultKind);
        }
        (each.finish(), ...);
      },
      arguments);
}

/// The entries of a series that For Each visits: its objects, or its values if it has no objects.
template <class C>
std::vector<Value> entriesOfObject(void* object) {
  C& self = *static_cast<C*>(object);
  std::vector<Value> entries;
  const auto append = [&entries](const auto& value) {
    toHost(entries.emplace_back(), value, TextKind::Plain);
  };
  if constexpr (isCollection<C>) {
    for (const auto& value : self) append(value);
  } else if constexpr (std::same_as<C, AQ_EmtRcvTable>) {
    for (std::int32_t place = 1; place <= self.Count(); ++place) append(self.Record(place));
  } else if constexpr (std::same_as<C, AQ_MaskRow>) {
    std::vector<std::int16_t> bands;
    for (const auto& [band, mask] : self) bands.push_back(band);
    for (const std::int16_t band : bands) append(self.Mask(band));
  } else {
    for (const auto& [number, value] : self) append(value);
  }
  return entries;
}

/// Whether hosts see a value as a collection.
template <class T>
constexpr bool givesCollection() {
  if constexpr (Shared<T>) return ACollection<typename T::element_type>;
  return isVector<T>;
}

template <class C>
class TableOf {
 public:
  [[nodiscard]] static ClassTable make() { return std::move(TableOf().table_); }

 private:
  using Parameters = std::span<const describe::Parameter>;

  TableOf() {
    const std::string name = className<C>();
    table_.name = widened(name);
    table_.progId = std::string(kServer) + "." + name;
    table_.number = describe::Description<C>::number;
    if constexpr (isCreatable<C>) table_.create = [] { return std::make_shared<C>(); };
    table_.hold = [](std::shared_ptr<void> object) {
      return Variant(std::static_pointer_cast<C>(std::move(object)));
    };
    table_.held = [](const Variant& value) -> std::shared_ptr<void> {
      try {
        return value.toObject<C>();
      } catch (const Error&) {
        return nullptr;
      }
    };
    if constexpr (isSeries<C>) table_.entries = entriesOfObject<C>;
    forMembers<C>([this](std::int32_t id, const auto& member) {
      id_ = id;
      take(member);
    });
    for (const Extra& extra : kExtras) {
      if (extra.owner == name) take(extra);
    }
  }

  template <class Get, class Set>
  void take(const describe::Property<Get, Set>& property) {
    Member& member = add(property.name, {});
    member.get = reader(property.get, property.about);
    member.givesCollection = givesCollection<std::remove_cvref_t<std::invoke_result_t<Get, C&>>>();
    if constexpr (!std::is_null_pointer_v<Set>) member.put = setter(property.set, property.about);
  }
  template <class Value_>
  void take(const describe::Field<Value_ C::*>& field) {
    Member& member = add(field.name, {});
    member.get = reader(field.member, field.about);
    member.givesCollection = givesCollection<Value_>();
    if constexpr (isCreatable<C>) {
      member.put = [at = field.member, kind = kindOf(field.about)](const Call& call) {
        self(call).*at = Argument<Value_>(Given{call.value, 0, kind}).get();
      };
    }
  }
  template <class Set>
  void take(const describe::Setter<Set>& given) {
    add(given.name, {}).put = setter(given.set, given.value.about);
  }
  template <class Key, class Value_, class Set>
  void take(const describe::Indexed<Value_ (C::*)(Key) const, Set>& view) {
    indexed<Key>(view);
  }
  template <class Key, class Value_, class Set>
  void take(const describe::Indexed<Value_ (C::*)(Key), Set>& view) {
    indexed<Key>(view);
  }
  template <class Result, class... As, std::size_t Count>
  void take(const describe::Method<Result (C::*)(As...), Count>& method) {
    add(method.name, method.parameters).get = caller<Result, As...>(method);
  }
  template <class Result, class... As, std::size_t Count>
  void take(const describe::Method<Result (C::*)(As...) const, Count>& method) {
    add(method.name, method.parameters).get = caller<Result, As...>(method);
  }
  template <class Entry, std::size_t Count>
  void take(const describe::Method<void (C::*)(Entry, std::string_view), Count>& method) {
    static_assert(isCollection<C>, "only collections have a key that may be left out");
    Member& member = add(method.name, method.parameters);
    member.parameters.front() = widened(kEntryName);
    member.get = [](const Call& call) {
      const auto entry = Argument<Entry>(Given{call.given[0], 0, TextKind::Plain}).get();
      if (isMissing(call.given[1])) return self(call).Add(entry);
      self(call).Add(entry, Argument<std::string>(Given{call.given[1], 1, TextKind::Plain}).get());
    };
  }
  template <class Result, class... As, std::size_t Count>
  void take(const describe::Function<Result (*)(As...), Count>& function) {
    if constexpr (isShown<Result, As...>) {
      add(function.name, function.parameters).get =
          [run = function.call, kinds = kindsOf(function.parameters)](const Call& call) {
            callWith<Result, As...>(call, kinds, TextKind::Plain, run);
          };
    }
  }
  template <class Other>
  void take(const describe::Banded<Other>& banded) {
    add(banded.name, std::span(&banded.other, 1)).get = [run = banded.call](const Call& call) {
      struct Range {
        std::int16_t low;
        std::int16_t high;
        [[nodiscard]] std::int16_t LowBand() const { return low; }
        [[nodiscard]] std::int16_t HighBand() const { return high; }
      };
      const Given other{call.given[0], 0, TextKind::Plain};
      const Range range = reading(other, [&other] {
        return Range{propertyOf(*other.at, L"LowBand").toInt16(),
                     propertyOf(*other.at, L"HighBand").toInt16()};
      });
      toHost(call.result, run(self(call), range), TextKind::Plain);
    };
  }
  template <class ByPlace, class ByKey>
  void take(const describe::Keyed<ByPlace, ByKey>& keyed) {
    const describe::Parameter placeOrKey{"PlaceOrKey", {}};
    add(keyed.name, std::span(&placeOrKey, 1)).get = [keyed](const Call& call) {
      const Variant key = Argument<Variant>(Given{call.given[0], 0, TextKind::Plain}).get();
      const auto run = [&](const auto& at, const auto& given) {
        using Result = decltype((self(call).*at)(given));
        if constexpr (std::is_void_v<Result>) {
          (self(call).*at)(given);
        } else {
          toHost<std::remove_cvref_t<Result>>(call.result, (self(call).*at)(given),
                                              TextKind::Plain);
        }
      };
      if (key.type() == Variant::Type::String) {
        run(keyed.byKey, key.toString());
      } else {
        run(keyed.byPlace, key.toInt32());
      }
    };
  }
  void take(const Extra& extra) {
    id_ = extra.id;
    Member& member = add(extra.name, {});
    for (std::string_view rest = extra.parameters; !rest.empty();) {
      const std::string_view parameter = rest.substr(0, rest.find(','));
      member.parameters.push_back(widened(parameter.substr(parameter.rfind(' ') + 1)));
      rest.remove_prefix(std::min(parameter.size() + 1, rest.size()));
    }
    member.required = member.parameters.size();
    ExtraCalls calls = callsOf(extra);
    member.get = std::move(calls.get);
    member.put = std::move(calls.put);
  }

  Member& add(const char* name, Parameters parameters) {
    Member& member = table_.members.emplace_back();
    member.name = widened(name);
    member.id = id_;
    for (const auto& parameter : parameters) {
      member.parameters.push_back(widened(parameter.name));
      if (!parameter.isOptional) member.required = member.parameters.size();
    }
    return member;
  }

  static C& self(const Call& call) { return *static_cast<C*>(call.object); }

  /// All text of a file failure is treated like a file name, since it names files and quotes them.
  [[nodiscard]] static TextKind kindOf(const describe::About& about) {
    return about.isFileName || std::same_as<C, FileFailure> ? TextKind::Name : TextKind::Plain;
  }
  template <std::size_t Count>
  [[nodiscard]] static auto kindsOf(const std::array<describe::Parameter, Count>& parameters) {
    std::array<TextKind, Count> kinds{};
    std::transform(parameters.begin(), parameters.end(), kinds.begin(),
                   [](const auto& parameter) { return kindOf(parameter.about); });
    return kinds;
  }

  template <class Get>
  static Thunk reader(Get get, const describe::About& about) {
    return [get, kind = kindOf(about), isDate = about.isDate](const Call& call) {
      using Result = std::remove_cvref_t<std::invoke_result_t<Get, C&>>;
      toHost<Result>(call.result, std::invoke(get, self(call)), kind, isDate);
    };
  }
  template <class A>
  static Thunk setter(void (C::*set)(A), const describe::About& about) {
    return [set, kind = kindOf(about)](const Call& call) {
      (self(call).*set)(Argument<A>(Given{call.value, 0, kind}).get());
    };
  }
  template <class Key, class View>
  void indexed(const View& view) {
    Member& member = add(view.name, std::span(&view.key, 1));
    member.get = [get = view.get](const Call& call) {
      const auto key = Argument<Key>(Given{call.given[0], 0, TextKind::Plain});
      using Result = std::remove_cvref_t<std::invoke_result_t<decltype(get), C&, Key>>;
      toHost<Result>(call.result, std::invoke(get, self(call), key.get()), TextKind::Plain);
    };
    member.put = stored(view.set);
  }
  template <class Key, class A>
  static Thunk stored(void (C::*set)(Key, A)) {
    return [set](const Call& call) {
      const auto key = Argument<Key>(Given{call.given[0], 0, TextKind::Plain});
      const auto value = Argument<A>(Given{call.value, 1, TextKind::Plain});
      (self(call).*set)(key.get(), value.get());
    };
  }
  template <class Result, class... As, class Called>
  static Thunk caller(const Called& method) {
    return [at = method.call, kinds = kindsOf(method.parameters),
            resultKind = kindOf(method.about)](const Call& call) {
      callWith<Result, As...>(call, kinds, resultKind, [&](auto&&... given) -> decltype(auto) {
        return (self(call).*at)(std::forward<decltype(given)>(given)...);
      });
    };
  }

  std::int32_t id_ = 0;
  ClassTable table_;
};

/// Adds the tables of a list of classes.
using Tables = std::vector<std::pair<const std::type_info*, ClassTable>>;
template <class... C>
void addTables(Tables& tables) {
  (tables.emplace_back(&typeid(C), TableOf<C>::make()), ...);
}
template <class... C>
void addTables(Tables& tables, describe::List<C...> /*classes*/) {
  const auto add = [&tables]<class One>() {
    if constexpr (requires { describe::Description<One>::number; }) addTables<One>(tables);
  };
  (add.template operator()<C>(), ...);
}

// One function per source file, since each takes a long time to compile.
void addModels(Tables& tables);
void addCollections(Tables& tables);
void addGeometry(Tables& tables);
void addNoise(Tables& tables);
void addHeaders(Tables& tables);
void addFiles(Tables& tables);

}  // namespace aq::com
