#include "aq/noise/counted_levels.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <limits>

#include "aq/noise/level_table.h"

namespace aq {
namespace {

constexpr double kNotCounted = std::numeric_limits<double>::quiet_NaN();

bool isLevel(double level) { return std::isfinite(level) && level != kInvalidLevel; }

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
  codes_ = spectrum.levelCodes();
  if (!isCoded()) takeEach(spectrum);
  if (masks != nullptr) mask(*masks);
  areInTable_ = isCoded() && aq::areInTable(codes_);
}

double CountedLevels::level(std::int32_t band) const {
  if (band < low_ || band >= end()) return kNotCounted;
  if (!isCoded()) return levels_[at(band)];
  const LevelCode code = codes_[at(band)];
  return code == kInvalidCode ? kNotCounted : levelOf(code);
}

std::int16_t CountedLevels::count(std::int32_t first, std::int32_t last) const {
  const std::int32_t begin = std::max(first, low_);
  const std::int32_t after = std::min(last + 1, end());
  if (areInTable_) return static_cast<std::int16_t>(std::max(0, after - begin));
  std::int32_t found = 0;
  for (std::int32_t band = begin; band < after; ++band) found += counts(band) ? 1 : 0;
  return static_cast<std::int16_t>(found);
}

std::int16_t CountedLevels::countRun(std::int32_t first, std::int32_t last) const {
  if (areInTable_ && low_ <= first) return count(first, last);
  std::int32_t band = first;
  while (band <= last && counts(band)) ++band;
  return static_cast<std::int16_t>(band - first);
}

bool CountedLevels::counts(std::int32_t band) const {
  if (band < low_ || band >= end()) return false;
  return isCoded() ? codes_[at(band)] != kInvalidCode : !std::isnan(levels_[at(band)]);
}

void CountedLevels::takeEach(const AQ_Spectrum& spectrum) {
  const int bands = std::max(0, spectrum.HighBand() - spectrum.LowBand() + 1);
  levels_.assign(static_cast<std::size_t>(bands), kNotCounted);
  for (const auto& [band, level] : spectrum) {
    const double number = numberOf(level);
    if (isLevel(number)) levels_[at(band)] = number;
  }
}

void CountedLevels::mask(const AQ_MaskRow& masks) {
  maskedCodes_.assign(codes_.begin(), codes_.end());
  codes_ = maskedCodes_;
  for (const auto& [band, decision] : masks) {
    if (band < low_ || band >= end()) continue;
    if (decision.MaskMode() == NOT_MASKED || decision.AdjustMode() != NOT_ADJUSTED) continue;
    if (isCoded()) {
      maskedCodes_[at(band)] = kInvalidCode;
    } else {
      levels_[at(band)] = kNotCounted;
    }
  }
}

}  // namespace aq
