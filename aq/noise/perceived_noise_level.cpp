#include "aq/noise/perceived_noise_level.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <utility>
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

/// Converts levels of one band to noys.
struct BandNoys {
  const NoyBand* band;
  double operator()(double level) const { return noysOf(*band, level); }
};

/// Tables of noys by level code. Adjacent bands with the same curve share a table.
class NoyTables {
 public:
  NoyTables() {
    tables_.reserve(kCurves.back() + 1);
    for (std::size_t i = 0; i < kNoyBands.size(); ++i) {
      if (kCurves[i] == tables_.size()) tables_.emplace_back(BandNoys{&kNoyBands[i]});
    }
  }

  /// The table for the band at index `i` of `kNoyBands`.
  [[nodiscard]] const LevelTable<BandNoys>& operator[](std::size_t i) const {
    return tables_[kCurves[i]];
  }

 private:
  /// For each band, the index of its table in `tables_`.
  static constexpr auto kCurves = [] {
    std::array<std::size_t, kNoyBands.size()> curves{};
    for (std::size_t i = 1; i < curves.size(); ++i) {
      curves[i] = curves[i - 1] + (kNoyBands[i] == kNoyBands[i - 1] ? 0 : 1);
    }
    return curves;
  }();
  std::vector<LevelTable<BandNoys>> tables_;
};

/// The noys by band, from `kFirstNoyBand` up; 0 for a level that does not count.
std::array<double, kNoyBands.size()> noysOf(const CountedLevels& record, const NoyTables& tables) {
  std::array<double, kNoyBands.size()> noys{};
  const std::int32_t low = std::max<std::int32_t>(record.low(), kFirstNoyBand);
  auto i = static_cast<std::size_t>(low - kFirstNoyBand);
  if (record.isCoded()) {
    for (const LevelCode code : record.codes(low, kLastNoyBand)) {
      noys[i] = tables[i].of(code);
      ++i;
    }
    return noys;
  }
  for (std::int32_t band = low; band <= kLastNoyBand; ++band, ++i) {
    noys[i] = noysOf(kNoyBands[i], record.level(band));
  }
  return noys;
}

/// The total noisiness; `noysAt` returns the noys at an index of `kNoyBands`. There are two sums,
/// so that an addition need not wait for the one before it, and no loop, so that the index of each
/// table is a constant.
template <class NoysAt, std::size_t... kPairs>
double totalOf(const NoysAt& noysAt, std::index_sequence<kPairs...>) {
  double highest = 0;
  double even = 0;
  double odd = 0;
  const auto add = [&](double first, double second) {
    highest = std::max(second, std::max(first, highest));
    even += first;
    odd += second;
  };
  (add(noysAt(2 * kPairs), noysAt(2 * kPairs + 1)), ...);
  return 0.85 * highest + 0.15 * (even + odd);
}

}  // namespace

double totalNoisinessOf(const CountedLevels& record) {
  constexpr std::make_index_sequence<kNoyBands.size() / 2> kPairs;
  static const NoyTables tables;
  if (record.areInTable() && record.low() <= kFirstNoyBand && record.end() > kLastNoyBand) {
    const auto codes = record.codes(kFirstNoyBand, kLastNoyBand);
    return totalOf([&](std::size_t i) { return tables[i][codes[i]]; }, kPairs);
  }
  const auto noys = noysOf(record, tables);
  return totalOf([&](std::size_t i) { return noys[i]; }, kPairs);
}

double perceivedLevelOf(double totalNoisiness) {
  return totalNoisiness > 0 ? 40 + 10 * std::log2(totalNoisiness) : 0;
}

double totalNoisinessAt(double perceivedLevel) { return std::exp2((perceivedLevel - 40) / 10); }

double perceivedNoiseLevel(const AQ_Spectrum& spectrum, const AQ_MaskRow* masks) {
  const double level = perceivedLevelOf(totalNoisinessOf(CountedLevels(spectrum, masks)));
  if (std::isfinite(level)) return level;
  throw Error(ErrorCode::Overflow, "the levels are too high for a perceived noise level");
}

}  // namespace aq
