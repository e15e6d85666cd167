#pragma once

#include <memory>
#include <string>
#include <vector>

#include "aq/core/variant.h"
#include "component/class_table.h"
#include "component/com.h"
#include "component/text.h"

// Values between hosts and the library, without the types of C++: `convert.h` has those.

namespace aq::com {

/// An argument that the host left out.
[[nodiscard]] bool isMissing(const VARIANT* given);

/// Empty, Null or Nothing, also by reference.
[[nodiscard]] bool isNoObject(const VARIANT& given);

/// A host's value with its own type; of a foreign object its default member. Null gives Empty. An
/// array, and an object without a default member, is a type mismatch.
[[nodiscard]] Variant variantOf(const VARIANT& given, TextKind kind = TextKind::Plain);

/// As text; Empty gives an empty one.
[[nodiscard]] std::string stringOf(const VARIANT& given, TextKind kind);

/// The object of the component that `given` holds, if it is of that class; null for no object.
/// Anything else is a type mismatch.
[[nodiscard]] std::shared_ptr<void> objectOf(const VARIANT& given, const ClassTable& table);

/// Whether it holds an object of that class.
[[nodiscard]] bool isObjectOf(const VARIANT& given, const ClassTable& table);

/// The entries of an array of one dimension, or of what For Each goes through.
[[nodiscard]] std::vector<Value> entriesOf(const VARIANT& given);

/// A named property of any object.
[[nodiscard]] Variant propertyOf(const VARIANT& given, const wchar_t* name);

// What hosts get, into a value that is empty.
void setVariant(VARIANT& to, const Variant& value);
void setObject(VARIANT& to, std::shared_ptr<void> object, const ClassTable& table);
void setText(VARIANT& to, std::string_view text, TextKind kind);

/// Whether a host's variable can be written.
[[nodiscard]] bool isVariable(const VARIANT& given);
[[nodiscard]] bool isObjectVariable(const VARIANT& given);
[[nodiscard]] bool isNumberVariable(const VARIANT& given);

/// Stores what `value` holds in the host's variable, in place of what it held.
void writeBack(VARIANT& variable, Value& value);

}  // namespace aq::com
