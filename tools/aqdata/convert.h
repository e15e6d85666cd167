#pragma once

#include <string>

#include "tools/aqdata/sheet.h"

namespace aqdata {

/// A whole file as one document: header and rows.
[[nodiscard]] Json documentOf(const std::string& path, const Measurement& read, const Sheet& sheet);

/// Writes the positions of a track to the session's output, and reports their number and that of
/// the rejected fixes.
void writePositions(Session& session, const Tracking& track, const std::string& from);

}  // namespace aqdata
