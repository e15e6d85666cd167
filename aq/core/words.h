#pragma once

#include <string_view>

#include "aq/core/enumerations.h"
#include "aq/core/export.h"

namespace aq {

// The words that files and settings use for members of enumerations. Averaging methods: "LINEAR",
// "TRUSLO", "4S100", "4S95", "CONTEXPO", "NA". Time stamps: "START", "MIDPT", "END", "ICAOSLO",
// "OLDSLO". Reference times: "START", "OVERHEAD", "AMAX", "PMAX", "TMAX", "OAMAX", "HACK", "OTHER".

/// The word for a member; empty for any other value.
[[nodiscard]] AQ_API std::string_view wordOf(AQ_AverageMethod value);
[[nodiscard]] AQ_API std::string_view wordOf(AQ_TimeStampType value);
[[nodiscard]] AQ_API std::string_view wordOf(AQ_RefTimeType value);

/// Sets `value` to the member with exactly that word. Returns false and leaves `value` unchanged
/// for any other text.
AQ_API bool setByWord(AQ_AverageMethod& value, std::string_view word);
AQ_API bool setByWord(AQ_TimeStampType& value, std::string_view word);
AQ_API bool setByWord(AQ_RefTimeType& value, std::string_view word);

}  // namespace aq
