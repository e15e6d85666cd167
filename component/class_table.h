#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <span>
#include <string>
#include <string_view>
#include <typeinfo>
#include <unordered_map>
#include <utility>
#include <vector>

#include "aq/core/variant.h"
#include "component/com.h"

// A class as hosts see it: its members by name and number, with their implementations.

namespace aq::com {

/// An error that hosts receive as an `HRESULT`. Thrown only inside the DLL.
struct Fault {
  HRESULT code;
  std::size_t argument = SIZE_MAX;  ///< position of the argument that the error is about, if any
};

/// A VARIANT that frees what it holds.
class Value : public VARIANT {
 public:
  Value() { VariantInit(this); }
  Value(Value&& other) noexcept : VARIANT(other) { VariantInit(&other); }
  Value& operator=(Value&& other) noexcept {
    std::swap(static_cast<VARIANT&>(*this), static_cast<VARIANT&>(other));
    return *this;
  }
  Value(const Value&) = delete;
  Value& operator=(const Value&) = delete;
  ~Value() { VariantClear(this); }

  /// Moves the value to `other`, without freeing what `other` held.
  void release(VARIANT& other) {
    other = *this;
    VariantInit(this);
  }
};

/// One call of a member.
struct Call {
  void* object;
  std::span<VARIANTARG* const> given;  ///< arguments by position; null if omitted
  VARIANTARG* value;                   ///< the new value of a property
  Value& result;
};
using Thunk = std::function<void(const Call&)>;

struct Member {
  std::wstring name;
  DISPID id = 0;
  std::vector<std::wstring> parameters;
  std::size_t required = 0;  ///< number of leading parameters that must be given
  Thunk get = {};            ///< reads the property or runs the method
  Thunk put = {};
  bool givesCollection = false;  ///< whether it takes no arguments and returns a collection
};

struct ClassTable {
  std::wstring name;
  std::string progId;
  int number = 0;
  std::vector<Member> members;
  std::function<std::shared_ptr<void>()> create = {};  ///< empty if hosts cannot create objects
  std::function<Variant(std::shared_ptr<void>)> hold = {};  ///< makes a value that holds an object
  /// The object of this class that a value holds; null if it holds none.
  std::function<std::shared_ptr<void>(const Variant&)> held = {};
  std::function<std::vector<Value>(void*)> entries = {};  ///< the entries that For Each visits
  std::unordered_map<std::wstring, const Member*> byName = {};  ///< keys are in lower case
  std::vector<const Member*> byId = {};
  std::unordered_map<DISPID, const Member*> byOtherId = {};

  [[nodiscard]] const Member* find(DISPID id) const {
    const auto place = static_cast<std::size_t>(id);
    if (place < byId.size()) return byId[place];
    const auto found = byOtherId.find(id);
    return found == byOtherId.end() ? nullptr : found->second;
  }
};

[[nodiscard]] std::wstring lowerCase(std::wstring_view name);

/// Every class with a number, in the order of the description.
[[nodiscard]] const std::vector<const ClassTable*>& allTables();

/// The table of a C++ class.
[[nodiscard]] const ClassTable& tableOf(const std::type_info& type);
template <class C>
[[nodiscard]] const ClassTable& tableOf() {
  static const ClassTable& table = tableOf(typeid(C));
  return table;
}

}  // namespace aq::com
