#include "aq/masking/last_good_band.h"

namespace aq {
namespace {

constexpr std::int16_t kFirst = 28;  // 630 Hz, the lowest band that can be the last good one

bool isMasked(AQ_MaskRow& row, std::int16_t band) {
  return row.decision(band).MaskMode() != NOT_MASKED;
}

}  // namespace

std::int16_t lastGoodBand(AQ_MaskRow& row) {
  const bool firstMasked = isMasked(row, kFirst);
  const bool secondMasked = isMasked(row, kFirst + 1);
  if (firstMasked && secondMasked) return AQ_INVALID_LEVEL;
  for (std::int32_t band = kFirst + 1; band <= row.HighBand(); ++band) {
    if (isMasked(row, static_cast<std::int16_t>(band))) return static_cast<std::int16_t>(band - 1);
  }
  return 0;
}

std::int16_t lastGoodBand(const AQ_MaskRow& row) {
  bool firstMasked = false;
  for (const auto& [band, decision] : row) {
    if (band < kFirst || decision.MaskMode() == NOT_MASKED) continue;
    if (band > kFirst) {
      if (firstMasked && band == kFirst + 1) return AQ_INVALID_LEVEL;
      return static_cast<std::int16_t>(band - 1);
    }
    firstMasked = true;
  }
  return 0;
}

}  // namespace aq
