#pragma once

#include <memory>

#include "aq/core/export.h"
#include "aq/masking/mask_map.h"
#include "aq/spectral/spectral_time_history.h"

namespace aq {

/// Makes the masking map of a history from the spectrum of the ambient: masks levels less than
/// `margin` dB above the ambient in the same band (`MASKED_BY_MASK_CRITERION`), and sets each row's
/// last good band. Levels within a millionth of a decibel of that limit, and levels of 9999, are
/// not masked. Throws `InvalidArgument` when there are no records or they are not numbered from 1
/// without gaps, `InvalidValue` when the ambient lacks a valid level in a band of a record or
/// `margin` is negative or not finite, and `TypeMismatch` for a level that is not a number.
[[nodiscard]] AQ_API std::shared_ptr<AQ_MaskMap> maskByAmbient(
    const AQ_SpectralTimeHistory& history, const AQ_Spectrum& ambient, double margin);

}  // namespace aq
