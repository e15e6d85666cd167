#pragma once

#include <functional>
#include <string>
#include <vector>

#include "tools/aqdata/session.h"

namespace aqdata {

/// The value of a key in the document of a file, or in its header; null if missing.
[[nodiscard]] const Json& fieldOf(const Json& info, const std::string& field);

/// Compares two values for sorting: numbers by value, times of day chronologically, and other text
/// without regard to case; null and empty text come last. Returns a negative number, 0 or a
/// positive number.
[[nodiscard]] int compareFields(const Json& a, const Json& b);

/// Decides from a file's document, as `info --json` prints it, whether the file is wanted. Throws
/// `Failure` if <, <=, > or >= compares a number or a time of day with anything else.
using Condition = std::function<bool(const Json& info)>;

/// Parses a condition such as `microphone=M1 and (records>100 or begin>=14:00)`: comparisons of
/// fields by =, !=, <, <=, > and >= with a number, a time of day or text, in which `*` and `?` are
/// wildcards for = and !=. `and`, `or`, `not` and parentheses combine comparisons. A comparison is
/// false if a file lacks its field. Throws `Failure` for any other text, and for a field that is
/// not in `fields`.
[[nodiscard]] Condition conditionFrom(const std::string& text,
                                      const std::vector<std::string>& fields);

/// Throws `Failure` for a field that is not in `fields`.
void expectField(const std::string& field, const std::vector<std::string>& fields);

}  // namespace aqdata
