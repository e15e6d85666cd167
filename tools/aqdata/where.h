#pragma once

#include <functional>
#include <string>
#include <vector>

#include "tools/aqdata/session.h"

namespace aqdata {

/// A value of a document about a file, or of its header; null if it has none.
[[nodiscard]] const Json& fieldOf(const Json& info, const std::string& field);

/// Which of two values comes first: numbers by size, times of day by the clock, other text in
/// any case; what has no value comes last. Negative, 0 or positive.
[[nodiscard]] int compareFields(const Json& a, const Json& b);

/// Whether a document about a file is wanted.
using Condition = std::function<bool(const Json& info)>;

/// A condition such as `microphone=M1 and (records>100 or begin>=14:00)`: fields, compared by =,
/// !=,
/// <, <=, > and >= with a number, a time of day or a text, where `*` and `?` stand for others;
/// `and`, `or`, `not` and parentheses. A file without the field fits no comparison. Throws
/// `Failure` for other text, and for a field that is not in `fields`.
[[nodiscard]] Condition conditionFrom(const std::string& text,
                                      const std::vector<std::string>& fields);

/// Throws `Failure` for a field that is not in `fields`.
void expectField(const std::string& field, const std::vector<std::string>& fields);

}  // namespace aqdata
