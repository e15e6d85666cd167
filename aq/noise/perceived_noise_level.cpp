#include "aq/noise/perceived_noise_level.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <vector>

#include "aq/core/error.h"
#include "aq/noise/level_table.h"
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
  return 0;  // also for NaN, a level that does not count
}

/// The noys of the levels of one band.
struct BandNoys {
  const NoyBand* band;
  double operator()(double level) const { return noysOf(*band, level); }
};

/// The noys of levels that have codes, by band. Bands with the same curve share a table.
class NoyTables {
 public:
  NoyTables() {
    tables_.reserve(kNoyBands.size());  // bands keep pointers to them
    for (std::size_t i = 0; i < bands_.size(); ++i) {
      const bool isNew = i == 0 || !(kNoyBands[i] == kNoyBands[i - 1]);
      if (isNew) tables_.emplace_back(BandNoys{&kNoyBands[i]});
      bands_[i] = &tables_.back();
    }
  }

  /// The table of the band at an index of `kNoyBands`.
  [[nodiscard]] const LevelTable<BandNoys>& operator[](std::size_t i) const { return *bands_[i]; }

 private:
  std::vector<LevelTable<BandNoys>> tables_;
  std::array<const LevelTable<BandNoys>*, kNoyBands.size()> bands_{};
};

/// Calls `add` with the noys of each band of the record.
template <class Add>
void forEachNoys(const CountedLevels& record, const Add& add) {
  static const NoyTables tables;
  const std::int32_t low = std::max<std::int32_t>(record.low(), kFirstNoyBand);
  auto i = static_cast<std::size_t>(low - kFirstNoyBand);
  if (record.isCoded()) {
    for (const LevelCode code : record.codes(low, kLastNoyBand)) add(tables[i++].of(code));
    return;
  }
  for (std::int32_t band = low; band <= kLastNoyBand; ++band) {
    add(noysOf(kNoyBands[i++], record.level(band)));
  }
}

}  // namespace

double perceivedNoiseLevelOf(const CountedLevels& record) {
  double highest = 0;
  double sum = 0;
  forEachNoys(record, [&](double noys) {
    highest = std::max(highest, noys);
    sum += noys;
  });
  const double total = 0.85 * highest + 0.15 * sum;
  return total > 0 ? 40 + 10 * std::log2(total) : 0;
}

double perceivedNoiseLevel(const AQ_Spectrum& spectrum, const AQ_MaskRow* masks) {
  const double level = perceivedNoiseLevelOf(CountedLevels(spectrum, masks));
  if (std::isfinite(level)) return level;
  throw Error(ErrorCode::Overflow, "the levels are too high for a perceived noise level");
}

}  // namespace aq
