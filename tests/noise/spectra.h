#pragma once

#include <aq/masking/mask_row.h>
#include <aq/spectral/spectrum.h>

#include <cstdint>
#include <string_view>
#include <vector>

namespace aq::test {

/// A spectrum with these levels from band `low` up.
inline AQ_Spectrum spectrumOf(std::int16_t low, const std::vector<Variant>& levels) {
  AQ_Spectrum spectrum;
  for (const Variant& level : levels) spectrum.SPL(low++, level);
  return spectrum;
}

/// A row with these decisions, two letters each, from band `low` up.
inline AQ_MaskRow rowOf(std::int16_t low, const std::vector<std::string_view>& decisions) {
  AQ_MaskRow row;
  for (const std::string_view decision : decisions) row.Mask(low++)->MaskString(decision);
  return row;
}

}  // namespace aq::test
