#pragma once

#include <string>

#include "aq/core/export.h"
#include "aq/sdf/recording.h"

namespace aq::sdf {

/// A recording as text: its records field by field, as the instrument itself prints them, then the
/// stored values of each trace and scan. `textRecording` reads back the same values of traces with
/// one value per point, the only ones that are converted to levels.
[[nodiscard]] AQ_API std::string textOf(const Recording& recording);

/// Appends a value with the digits that its type needs.
AQ_API void appendStored(std::string& text, double value, NumberType type);

/// Appends the value of one element of a field: a number, the word of a code, or text in quotes.
AQ_API void appendValue(std::string& text, const Record& record, const Field& field,
                        std::size_t element);

}  // namespace aq::sdf
