#pragma once

#include <cstdint>
#include <optional>
#include <vector>

#include "aq/core/export.h"
#include "aq/masking/mask_row.h"
#include "aq/spectral/spectrum.h"

namespace aq {

/// The results of the tone correction procedure for one band. Values that the procedure does not
/// define for a band are empty, such as the slope of the first band.
struct ToneStep {
  std::int16_t band = 0;
  double level = 0;             ///< dB
  std::optional<double> slope;  ///< level minus that of the band below, dB
  bool slopeMarked = false;     ///< the slope differs by more than 5 dB from that of the band below
  bool levelMarked = false;     ///< the level is replaced to find the background
  std::optional<double> adjusted;       ///< the level, or its replacement if it is marked, dB
  std::optional<double> adjustedSlope;  ///< slope of the adjusted levels, dB; band 19 has band 20's
  std::optional<double>
      meanSlope;  ///< mean of three adjusted slopes, this band's and the next two, dB
  std::optional<double> background;  ///< the level that the band would have without tones, dB
  std::optional<double> difference;  ///< level minus background, dB
  std::optional<double> correction;  ///< dB; 0 for a difference of up to 1.5 dB
};

/// The tone correction of a spectrum, with the steps for each band.
struct ToneCorrection {
  double correction = 0;  ///< the largest correction of all bands, dB
  std::int16_t band =
      0;  ///< the band that caused it, the lowest if several; 0 if the correction is 0
  std::int16_t lastBand = 0;   ///< the last band used; 18 when band 19 does not count
  std::vector<ToneStep> rows;  ///< one for each band used, from 19 up
};

/// The tone correction of a spectrum (14 CFR 36, A36.4.3) over bands 19 to 40 (80 Hz to 10 kHz), up
/// to the first level that does not count (see `weightedLevel`). Levels are compared without
/// rounding: slopes that differ by exactly 5 dB are not marked. With fewer than three bands the
/// correction is 0.
[[nodiscard]] AQ_API ToneCorrection toneCorrection(const AQ_Spectrum& spectrum,
                                                   const AQ_MaskRow* masks = nullptr);

}  // namespace aq
