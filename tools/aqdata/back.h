#pragma once

#include <optional>
#include <string>

#include "tools/aqdata/measurement.h"

namespace aqdata {

/// Reads a table or JSON document that `convert` has written: a history, a masking map or
/// positions. Returns nothing for a file that neither starts with `{` nor has the heading of such
/// a table. A table has no header, so the result has a new one, which names the table. Throws
/// `Failure`, which for a table names the line, and the field if one is at fault, or the record.
[[nodiscard]] std::optional<Measurement> backFrom(const std::string& path);

}  // namespace aqdata
