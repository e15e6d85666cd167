#pragma once

#include <cstdint>
#include <optional>
#include <vector>

#include "aq/core/export.h"
#include "aq/masking/mask_row.h"
#include "aq/spectral/spectrum.h"

namespace aq {

/// What the tone correction procedure found for one band. What a step does not define is empty, as
/// the slope of the first band.
struct ToneStep {
  std::int16_t band = 0;
  double level = 0;                     ///< dB
  std::optional<double> slope;          ///< level less that of the band below
  bool slopeMarked = false;             ///< the slope differs by more than 5 dB from the one before
  bool levelMarked = false;             ///< the level is taken out to find the background
  std::optional<double> adjusted;       ///< the level, or what takes the place of a marked one
  std::optional<double> adjustedSlope;  ///< slope of the adjusted levels
  std::optional<double> meanSlope;      ///< mean of three adjusted slopes, from this band's up
  std::optional<double> background;     ///< level without tones, dB
  std::optional<double> difference;     ///< level above the background, dB; counts from 1.5 up
  std::optional<double> correction;     ///< dB, 0 when the difference does not count
};

/// The tone correction of a spectrum, and how it came about.
struct ToneCorrection {
  double correction = 0;       ///< the largest of all bands, dB
  std::int16_t band = 0;       ///< the band that caused it, the lowest of equals; 0 for none
  std::int16_t lastBand = 0;   ///< the last band that was taken; 18 when the first does not count
  std::vector<ToneStep> rows;  ///< one for each band taken, from 19 up
};

/// The tone correction of a spectrum (14 CFR 36, A36.4.3) over bands 19 to 40 (80 Hz to 10 kHz), up
/// to the first level that does not count (see `weightedLevel`). Levels are compared as they are:
/// two slopes that differ by just 5 dB mark nothing. The correction of fewer than three bands is 0.
[[nodiscard]] AQ_API ToneCorrection toneCorrection(const AQ_Spectrum& spectrum,
                                                   const AQ_MaskRow* masks = nullptr);

}  // namespace aq
