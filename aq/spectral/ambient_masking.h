#pragma once

#include <memory>

#include "aq/core/export.h"
#include "aq/masking/mask_map.h"
#include "aq/spectral/spectral_time_history.h"

namespace aq {

/// The masking map of a history by an ambient spectrum: masks a level that is less than `margin` dB
/// above the ambient's of the same band (`MASKED_BY_MASK_CRITERION`), and sets each row's last good
/// band. A level that exceeds the ambient by the margin, to a millionth of a decibel, is not
/// masked; neither is one of 9999. Throws `InvalidArgument` when there are no records or they are
/// not numbered from 1 without gaps, `InvalidValue` when the ambient lacks a valid level in a band
/// of a record, and `TypeMismatch` for a level that is not a number.
[[nodiscard]] AQ_API std::shared_ptr<AQ_MaskMap> maskByAmbient(
    const AQ_SpectralTimeHistory& history, const AQ_Spectrum& ambient, double margin);

}  // namespace aq
