#pragma once

#include <optional>
#include <string>

#include "tools/aqdata/measurement.h"

namespace aqdata {

/// Reads a table or JSON document that `convert` has written: a history, a masking map or
/// positions. Returns nothing for a file that neither starts with `{` nor has the heading of such
/// a table. A table has no header, so the result has a new one, which names the table. Throws
/// `Failure`; for a fault in a table it names the line, and the field if one is at fault, or else
/// the record.
[[nodiscard]] std::optional<Measurement> backFrom(const std::string& path);

}  // namespace aqdata
