#pragma once

#include <memory>
#include <string>
#include <vector>

#include "aq/core/variant.h"
#include "component/class_table.h"
#include "component/com.h"
#include "component/text.h"

// Values passed between hosts and the library; `convert.h` has the conversions to C++ types.

namespace aq::com {

/// An argument that the host left out.
[[nodiscard]] bool isMissing(const VARIANT* given);

/// Empty, Null or Nothing, also by reference.
[[nodiscard]] bool isNoObject(const VARIANT& given);

/// A host's value with its own type; for a foreign object, its default member. Null becomes Empty.
/// An array or an object without a default member is a type mismatch.
[[nodiscard]] Variant variantOf(const VARIANT& given, TextKind kind = TextKind::Plain);

/// A value as text; Empty becomes an empty text.
[[nodiscard]] std::string stringOf(const VARIANT& given, TextKind kind);

/// The object of the component that `given` holds, if it is of that class; null for no object.
/// Anything else is a type mismatch.
[[nodiscard]] std::shared_ptr<void> objectOf(const VARIANT& given, const ClassTable& table);

/// Whether `given` holds an object of that class.
[[nodiscard]] bool isObjectOf(const VARIANT& given, const ClassTable& table);

/// The entries of a one-dimensional array, or of anything that For Each visits.
[[nodiscard]] std::vector<Value> entriesOf(const VARIANT& given);

/// A named property of any object.
[[nodiscard]] Variant propertyOf(const VARIANT& given, const wchar_t* name);

// Store a result for hosts in an empty value.
void setVariant(VARIANT& to, const Variant& value);
void setObject(VARIANT& to, std::shared_ptr<void> object, const ClassTable& table);
void setText(VARIANT& to, std::string_view text, TextKind kind);

/// Whether a host's variable is writable.
[[nodiscard]] bool isVariable(const VARIANT& given);
[[nodiscard]] bool isObjectVariable(const VARIANT& given);
[[nodiscard]] bool isNumberVariable(const VARIANT& given);

/// Stores a value in the host's variable, replacing the old one.
void writeBack(VARIANT& variable, Value& value);

}  // namespace aq::com
