#include "aq/noise/counted_levels.h"

#include <algorithm>
#include <cmath>
#include <limits>

#include "aq/noise/power_of_ten.h"

namespace aq {
namespace {

constexpr double kNotCounted = std::numeric_limits<double>::quiet_NaN();

/// The energies of all level codes.
const PowersOfLevels& energyTable() {
  static const PowersOfLevels table(0.1);
  return table;
}

bool counts(double level) { return std::isfinite(level) && level != kInvalidLevel; }

/// The number that a level is; NaN for text and what else is none.
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
  if (codes.empty()) {
    takeEach(spectrum);
  } else {
    takeCodes();
  }
  if (masks != nullptr) mask(*masks);
}

void CountedLevels::takeCodes() {
  const PowersOfLevels& table = energyTable();
  levels_.resize(codes_.size());
  energies_.resize(codes_.size());
  for (std::size_t i = 0; i < codes_.size(); ++i) {
    const bool valid = codes_[i] != kInvalidCode;
    levels_[i] = valid ? levelOf(codes_[i]) : kNotCounted;
    energies_[i] = valid ? table.of(codes_[i]) : 0;
  }
}

void CountedLevels::takeEach(const AQ_Spectrum& spectrum) {
  const int bands = std::max(0, spectrum.HighBand() - spectrum.LowBand() + 1);
  levels_.assign(static_cast<std::size_t>(bands), kNotCounted);
  energies_.assign(static_cast<std::size_t>(bands), 0);
  for (const auto& [band, level] : spectrum) {
    const double number = numberOf(level);
    if (!counts(number)) continue;
    const auto at = static_cast<std::size_t>(band - low_);
    levels_[at] = number;
    energies_[at] = powerOfTen(0.1 * number);
  }
}

void CountedLevels::mask(const AQ_MaskRow& masks) {
  for (const auto& [band, decision] : masks) {
    const std::int32_t at = band - low_;
    if (at < 0 || static_cast<std::size_t>(at) >= levels_.size()) continue;
    if (decision.MaskMode() == NOT_MASKED || decision.AdjustMode() != NOT_ADJUSTED) continue;
    takeOut(static_cast<std::size_t>(at));
  }
}

void CountedLevels::takeOut(std::size_t place) {
  levels_[place] = kNotCounted;
  energies_[place] = 0;
  if (!codes_.empty()) codes_[place] = kInvalidCode;
}

}  // namespace aq
