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

/// Draws the level of one band over time, or the overall level.
void plotHistory(Session& session, const Sheet& sheet);

/// Draws all levels: one line per band, one column per record, in the colours of the terminal.
void plotSpectrogram(Session& session, const Sheet& sheet);

}  // namespace aqdata
