#include "aq/noise/perceived_noise_level.h"

#include <algorithm>
#include <cmath>
#include <cstddef>

#include "aq/core/error.h"
#include "aq/noise/noy_table.h"
#include "aq/noise/power_of_ten.h"
#include "aq/noise/record_levels.h"

namespace aq {
namespace {

double noysOf(const NoyBand& band, double level) {
  if (level >= band.splA) return powerOfTen(band.mC * (level - band.splC));
  if (level >= band.splB) return powerOfTen(band.mB * (level - band.splB));
  if (level >= band.splE) return 0.3 * powerOfTen(band.mE * (level - band.splE));
  if (level >= band.splD) return 0.1 * powerOfTen(band.mD * (level - band.splD));
  return 0;  // also for a level that does not count
}

}  // namespace

double perceivedNoiseLevelOf(const CountedLevels& record) {
  double highest = 0;
  double sum = 0;
  for (std::size_t i = 0; i < kNoyBands.size(); ++i) {
    const double level = record.level(kFirstNoyBand + static_cast<std::int32_t>(i));
    const double noys = noysOf(kNoyBands[i], level);
    highest = std::max(highest, noys);
    sum += noys;
  }
  const double total = 0.85 * highest + 0.15 * sum;
  return total > 0 ? 40 + 10 / std::log10(2.0) * std::log10(total) : 0;
}

double perceivedNoiseLevel(const AQ_Spectrum& spectrum, const AQ_MaskRow* masks) {
  const double level = perceivedNoiseLevelOf(CountedLevels(spectrum, masks));
  if (std::isfinite(level)) return level;
  throw Error(ErrorCode::Overflow, "the levels are too high for a perceived noise level");
}

}  // namespace aq
