#pragma once

#include <memory>
#include <span>
#include <string>
#include <vector>

#include "aq/core/variant.h"
#include "component/class_table.h"
#include "component/com.h"
#include "component/text.h"

// Values passed between hosts and the library; `convert.h` has the conversions to C++ types.

namespace aq::com {

/// Whether the host left out an argument.
[[nodiscard]] bool isMissing(const VARIANT* given);

/// Whether a value is Empty, Null or Nothing, or a reference to one of these.
[[nodiscard]] bool isNoObject(const VARIANT& given);

/// A host's value in the nearest type that a `Variant` has; for an object of another component, the
/// value of its default member. Null becomes Empty. An array is a type mismatch, as is another
/// component's object whose default member is missing or is itself an object.
[[nodiscard]] Variant variantOf(const VARIANT& given, TextKind kind = TextKind::Plain);

/// A value as text; Empty becomes an empty string.
[[nodiscard]] std::string stringOf(const VARIANT& given, TextKind kind);

/// The component's object that `given` holds, if it is of the table's class; null for no
/// object. Anything else is a type mismatch.
[[nodiscard]] std::shared_ptr<void> objectOf(const VARIANT& given, const ClassTable& table);

/// Whether `given` holds an object of the table's class.
[[nodiscard]] bool isObjectOf(const VARIANT& given, const ClassTable& table);

/// A host's array of any shape, locked as long as this exists.
class GivenArray {
 public:
  /// Anything but an array is a type mismatch, as is an array of records.
  explicit GivenArray(const VARIANT& given);
  GivenArray(const GivenArray&) = delete;
  GivenArray& operator=(const GivenArray&) = delete;
  ~GivenArray() { SafeArrayUnaccessData(array_); }

  /// The last dimension comes first. Empty for an array that was never dimensioned.
  [[nodiscard]] std::span<const SAFEARRAYBOUND> bounds() const;
  /// The element at a place in memory order, by reference.
  [[nodiscard]] VARIANT at(std::size_t place) const;

 private:
  SAFEARRAY* array_ = nullptr;
  VARTYPE type_ = VT_EMPTY;
  void* data_ = nullptr;
};

/// The entries of an array with one dimension, one row or one column, or of anything that For Each
/// visits.
[[nodiscard]] std::vector<Value> entriesOf(const VARIANT& given);

/// The value of a named property of any object.
[[nodiscard]] Variant propertyOf(const VARIANT& given, const wchar_t* name);

// Store a result for hosts in an empty value.
void setVariant(VARIANT& to, const Variant& value);
void setObject(VARIANT& to, std::shared_ptr<void> object, const ClassTable& table);
void setText(VARIANT& to, std::string_view text, TextKind kind);

// Whether the host's variable can hold an object, or a number.
[[nodiscard]] bool isObjectVariable(const VARIANT& given);
[[nodiscard]] bool isNumberVariable(const VARIANT& given);

/// Stores a value in a host's variable that can hold it, replacing the old one.
void writeBack(const VARIANT& given, Value& value);

}  // namespace aq::com
