#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "aq/spectral/spectrum.h"
#include "aq/text/fields.h"

namespace aq {

/// The levels of consecutive bands, as columns of a data line.
struct LevelColumns {
  std::int16_t low = 0;
  std::int16_t high = 0;
  // Buffers that all lines share.
  std::vector<LevelCode> codes = {};
  std::vector<double> levels = {};

  /// Reads a level for every band from the line into `spectrum`.
  void read(FieldReader& fields, AQ_Spectrum& spectrum);
};

/// Appends the levels of a spectrum, separated by ",".
void appendLevels(std::string& text, const AQ_Spectrum& spectrum);

}  // namespace aq
