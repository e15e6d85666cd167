#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "tools/aqdata/session.h"
#include "tools/aqdata/sheet.h"

namespace aqdata {

/// Whether a cell is a valid level.
[[nodiscard]] bool isLevel(const Json& cell);

/// The level of all valid ones together; null without any.
[[nodiscard]] Json energySum(const std::vector<Json>& levels);

/// Draws a spectrum, one bar a band.
void plotSpectrum(Session& session, const Sheet& sheet, const Sheet::Row& row);

/// Draws the level of one band across the records, or of all together.
void plotHistory(Session& session, const Sheet& sheet);

/// Draws all levels: a line a band, a column a record, in the colours that the terminal has.
void plotSpectrogram(Session& session, const Sheet& sheet);

}  // namespace aqdata
