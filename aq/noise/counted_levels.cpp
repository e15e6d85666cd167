#include "aq/noise/counted_levels.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>

#include "aq/noise/power_of_ten.h"

namespace aq {
namespace {

constexpr double kNone = std::numeric_limits<double>::quiet_NaN();

/// The energies of all level codes: each is the product of two of 256 numbers.
class EnergyTable {
 public:
  EnergyTable() {
    for (int i = 0; i < 256; ++i) {
      high_[static_cast<std::size_t>(i)] = powerOfTen((i * 256 - 32768) / 1000.0);
      low_[static_cast<std::size_t>(i)] = powerOfTen(i / 1000.0);
    }
  }

  [[nodiscard]] double energy(LevelCode code) const {
    const auto at = static_cast<std::size_t>(code + 32768);
    return high_[at >> 8U] * low_[at & 255U];
  }

 private:
  std::array<double, 256> high_{};
  std::array<double, 256> low_{};
};

const EnergyTable& energyTable() {
  static const EnergyTable table;
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
    default: return kNone;
  }
}

}  // namespace

void CountedLevels::take(const AQ_Spectrum& spectrum, const AQ_MaskRow* masks) {
  low_ = spectrum.LowBand();
  if (const auto codes = spectrum.levelCodes(); !codes.empty()) {
    takeCodes(codes);
  } else {
    takeEach(spectrum);
  }
  if (masks != nullptr) mask(*masks);
}

double CountedLevels::level(std::int32_t band) const {
  const std::int32_t at = band - low_;
  const bool inside = at >= 0 && static_cast<std::size_t>(at) < levels_.size();
  return inside ? levels_[static_cast<std::size_t>(at)] : kNone;
}

std::int16_t CountedLevels::countOf(std::int32_t from, std::int32_t to) const {
  std::int16_t count = 0;
  for (std::int32_t band = from; band <= to; ++band) {
    if (!std::isnan(level(band))) ++count;
  }
  return count;
}

void CountedLevels::takeCodes(std::span<const LevelCode> codes) {
  const EnergyTable& table = energyTable();
  levels_.resize(codes.size());
  energies_.resize(codes.size());
  for (std::size_t i = 0; i < codes.size(); ++i) {
    const bool valid = codes[i] != kInvalidCode;
    levels_[i] = valid ? levelOf(codes[i]) : kNone;
    energies_[i] = valid ? table.energy(codes[i]) : 0;
  }
}

void CountedLevels::takeEach(const AQ_Spectrum& spectrum) {
  const int bands = std::max(0, spectrum.HighBand() - spectrum.LowBand() + 1);
  levels_.assign(static_cast<std::size_t>(bands), kNone);
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
    levels_[static_cast<std::size_t>(at)] = kNone;
    energies_[static_cast<std::size_t>(at)] = 0;
  }
}

}  // namespace aq
