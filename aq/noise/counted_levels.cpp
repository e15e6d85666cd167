#include "aq/noise/counted_levels.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <limits>

namespace aq {
namespace {

constexpr double kNotCounted = std::numeric_limits<double>::quiet_NaN();

bool counts(double level) { return std::isfinite(level) && level != kInvalidLevel; }

/// The level as a number; NaN for text and other values that are not numbers.
double numberOf(const Variant& level) {
  switch (level.type()) {
    case Variant::Type::Int16:
    case Variant::Type::Int32:
    case Variant::Type::Single:
    case Variant::Type::Double: return level.toDouble();
    default: return kNotCounted;
  }
}

}  // namespace

void CountedLevels::take(const AQ_Spectrum& spectrum, const AQ_MaskRow* masks) {
  low_ = spectrum.LowBand();
  const auto codes = spectrum.levelCodes();
  codes_.assign(codes.begin(), codes.end());
  if (codes.empty()) takeEach(spectrum);
  if (masks != nullptr) mask(*masks);
}

double CountedLevels::level(std::int32_t band) const {
  const auto at = static_cast<std::size_t>(band - low_);
  if (codes_.empty()) return levels_[at];
  return codes_[at] == kInvalidCode ? kNotCounted : levelOf(codes_[at]);
}

void CountedLevels::takeEach(const AQ_Spectrum& spectrum) {
  const int bands = std::max(0, spectrum.HighBand() - spectrum.LowBand() + 1);
  levels_.assign(static_cast<std::size_t>(bands), kNotCounted);
  for (const auto& [band, level] : spectrum) {
    const double number = numberOf(level);
    if (counts(number)) levels_[static_cast<std::size_t>(band - low_)] = number;
  }
}

void CountedLevels::mask(const AQ_MaskRow& masks) {
  for (const auto& [band, decision] : masks) {
    if (band < low_ || band >= end()) continue;
    if (decision.MaskMode() == NOT_MASKED || decision.AdjustMode() != NOT_ADJUSTED) continue;
    const auto at = static_cast<std::size_t>(band - low_);
    if (codes_.empty()) {
      levels_[at] = kNotCounted;
    } else {
      codes_[at] = kInvalidCode;
    }
  }
}

}  // namespace aq
