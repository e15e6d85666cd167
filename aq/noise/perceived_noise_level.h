#pragma once

#include "aq/core/export.h"
#include "aq/masking/mask_row.h"
#include "aq/spectral/spectrum.h"

namespace aq {

/// The perceived noise level of a spectrum in PNdB (14 CFR 36, A36.4.2, with the noys of A36.4.7),
/// from bands 17 to 40 (50 Hz to 10 kHz). Levels count as for `weightedLevel`; a level that does
/// not count adds no noys. Returns 0 if the sum of noys is 0. Throws `Overflow` for levels above
/// about 10,000 dB.
[[nodiscard]] AQ_API double perceivedNoiseLevel(const AQ_Spectrum& spectrum,
                                                const AQ_MaskRow* masks = nullptr);

}  // namespace aq
