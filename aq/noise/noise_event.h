#pragma once

#include <cstddef>
#include <optional>
#include <span>
#include <vector>

#include "aq/core/export.h"

namespace aq {

/// The noise of one aircraft passing by: its largest tone-corrected perceived noise level (PNLT),
/// the range of records that are summed, and the effective perceived noise level (EPNL). Records
/// are given by zero-based index.
struct NoiseEvent {
  std::size_t maximum = 0;  ///< the first record with the largest PNLT
  /// The 10 dB-down limits, both included in the sum. Empty where the records begin or end above
  /// the limit: the sum then runs to that end, and the EPNL is a lower bound.
  std::optional<std::size_t> first, last;
  /// Other local maxima in the summed range: those within 2 dB of the largest and at least 0.1 dB
  /// above both neighbours.
  std::vector<std::size_t> secondPeaks;
  double pnltm = 0;                ///< the largest PNLT, TPNdB, without `bandSharing`
  double epnl = 0;                 ///< EPNdB, without `bandSharing`
  double epnlWithBandSharing = 0;  ///< `epnl` + `bandSharing`, EPNdB
  double duration = 0;             ///< the duration correction `epnl` - `pnltm`, dB
  double bandSharing = 0;          ///< adjustment for a tone between two bands, dB
};

/// The event in a series of PNLT values (14 CFR 36, A36.4.4 to A36.4.6). NaN means a record without
/// PNLT: it adds nothing and lies below any limit. `seconds` gives the record lengths: one value
/// for all records or one per record. `toneCorrections` is empty or has one value in dB per record,
/// NaN if missing. The band-sharing adjustment is the mean of the corrections of the maximum and of
/// the two records on either side, where these have one, minus the correction of the maximum.
/// It is 0 if this difference is negative or the maximum has no correction.
///
/// Comparisons allow 1e-9 dB for the rounding of decimal fractions. Throws `InvalidArgument` if
/// there is no PNLT or the sizes differ, and `InvalidValue` for an infinite PNLT or a duration that
/// is not finite and above 0.
[[nodiscard]] AQ_API NoiseEvent noiseEvent(std::span<const double> pnlt,
                                           std::span<const double> seconds,
                                           std::span<const double> toneCorrections = {});

}  // namespace aq
