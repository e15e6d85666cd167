#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "tools/aqdata/session.h"
#include "tools/aqdata/sheet.h"

namespace aqdata {

/// Whether a cell holds a valid level.
[[nodiscard]] bool isLevel(const Json& cell);

/// The energy sum of the valid levels; null if no level is valid.
[[nodiscard]] Json energySum(const std::vector<Json>& levels);

/// Draws a spectrum, one bar per band.
void plotSpectrum(Session& session, const Sheet& sheet, const Sheet::Row& row);

/// Draws a level over time: that of the sheet's band if it has only one, otherwise the overall
/// level.
void plotHistory(Session& session, const Sheet& sheet);

/// Draws all levels as colours or shades, one line per band and one column per record. If the
/// terminal is too narrow, several records share a column.
void plotSpectrogram(Session& session, const Sheet& sheet);

}  // namespace aqdata
