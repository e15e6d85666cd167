#pragma once

#include <memory>

#include "aq/core/export.h"
#include "aq/masking/mask_map.h"
#include "aq/spectral/spectral_time_history.h"

namespace aq {

/// A masking map by the ambient: a level that is less than `margin` dB above the ambient's of the
/// same band is masked (`MASKED_BY_MASK_CRITERION`), and each row has its last good band. A level
/// that is the margin above, to a millionth of a decibel, is not masked; neither is one of 9999.
/// Throws `InvalidArgument` when the records are not numbered from 1 without a gap, or there are
/// none, `InvalidValue` when the ambient lacks a valid level in a band of a record. Level types
/// that are no number throw `TypeMismatch`.
[[nodiscard]] AQ_API std::shared_ptr<AQ_MaskMap> maskByAmbient(
    const AQ_SpectralTimeHistory& history, const AQ_Spectrum& ambient, double margin);

}  // namespace aq
