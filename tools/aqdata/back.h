#pragma once

#include <optional>
#include <string>

#include "tools/aqdata/measurement.h"

namespace aqdata {

/// The measurement of a table or JSON document as `convert` writes them, of a history, a masking
/// map or positions; nothing for any other file. A table has no header, so one that says where it
/// is from is made. Throws `Failure` with the line and field, or the row, that does not fit.
[[nodiscard]] std::optional<Measurement> backFrom(const std::string& path);

}  // namespace aqdata
