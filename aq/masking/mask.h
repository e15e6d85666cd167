#pragma once

#include <memory>
#include <string>
#include <string_view>

#include "aq/core/enumerations.h"
#include "aq/core/export.h"

namespace aq {

// The letters of the mask modes and adjustments, indexed by enumeration value.
inline constexpr std::string_view kMaskModes = "-MAF";
inline constexpr std::string_view kMaskAdjustments = "-SFTACR";

/// One masking decision for one band of one record: whether and by which test the ambient masks its
/// level, and how the level was adjusted. Setters store any value.
class AQ_API AQ_Mask {
 public:
  [[nodiscard]] std::shared_ptr<AQ_Mask> Copy() const { return std::make_shared<AQ_Mask>(*this); }

  [[nodiscard]] AQ_MASK_MODE MaskMode() const { return mode_; }
  void MaskMode(AQ_MASK_MODE mode) { mode_ = mode; }

  [[nodiscard]] AQ_MASK_ADJUST AdjustMode() const { return adjust_; }
  void AdjustMode(AQ_MASK_ADJUST adjust) { adjust_ = adjust; }

  /// The mode's letter ("-", "M", "A", "F") and the adjustment's ("-", "S", "F", "T", "A", "C",
  /// "R"); a value without a letter is left out. Setting takes the mode from the first character
  /// and the adjustment from the last; an unknown letter leaves its part unchanged.
  [[nodiscard]] std::string MaskString() const;
  void MaskString(std::string_view letters);

 private:
  AQ_MASK_MODE mode_ = NOT_MASKED;
  AQ_MASK_ADJUST adjust_ = NOT_ADJUSTED;
};

}  // namespace aq
