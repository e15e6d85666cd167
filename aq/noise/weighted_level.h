#pragma once

#include <optional>
#include <span>

#include "aq/core/enumerations.h"
#include "aq/core/export.h"
#include "aq/masking/mask_row.h"
#include "aq/spectral/spectrum.h"

namespace aq {

/// The A-, C- or D-weighted level (`AQ_METRIC_AWT`, `AQ_METRIC_CWT`, `AQ_METRIC_DWT`) or the
/// overall level (`AQ_METRIC_OA`) of a spectrum in dB: the energy sum of the levels that count. The
/// A and C weightings are those of IEC 61672-1, table 3, and the D weighting is that of IEC 537,
/// each rounded to a tenth of a decibel. Weighted levels use bands 10 to 43 (10 Hz to 20 kHz), the
/// overall level all bands.
///
/// A level counts if it is a finite number other than 9999 and, given a row of masks, if its band
/// is unmasked or its masked level was adjusted. Returns nothing if no level in the bands used
/// counts. Throws `InvalidArgument` if `weighting` is any other metric.
[[nodiscard]] AQ_API std::optional<double> weightedLevel(const AQ_Spectrum& spectrum,
                                                         AQ_METRIC_TYPE weighting,
                                                         const AQ_MaskRow* masks = nullptr);

/// The energy sum of the levels in dB that are finite and not 9999; nothing if there are none.
[[nodiscard]] AQ_API std::optional<double> energySum(std::span<const double> levels);

}  // namespace aq
