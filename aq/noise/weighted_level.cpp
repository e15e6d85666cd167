#include "aq/noise/weighted_level.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <iterator>
#include <limits>
#include <numeric>
#include <span>
#include <string>
#include <tuple>
#include <vector>

#include "aq/core/error.h"
#include "aq/detail/lanes.h"
#include "aq/noise/level_table.h"
#include "aq/noise/power_of_ten.h"
#include "aq/noise/record_levels.h"
#include "aq/noise/weightings.h"

namespace aq {
namespace {

constexpr std::size_t kWeightings = 3;  // A, C and D

constexpr std::array<const Weighting*, kWeightings> kWeights{&kWeightingA, &kWeightingC,
                                                             &kWeightingD};

/// The factors of a band's energy by type; 1 for the overall level.
using Factors = std::array<double, kWeightings + 1>;

std::array<Factors, std::tuple_size_v<Weighting>> factorsOfBands() {
  std::array<Factors, std::tuple_size_v<Weighting>> factors;
  for (std::size_t i = 0; i < factors.size(); ++i) {
    for (std::size_t type = 0; type < kWeightings; ++type) {
      factors[i][type] = powerOfTen(0.1 * (*kWeights[type])[i]);
    }
    factors[i][kWeightings] = 1;
  }
  return factors;
}

/// The energy sum of `levels` in dB; NaN if there are none. Computed relative to the highest level,
/// since 10^(0.1 L) may exceed the range of a double.
double relativeSum(const std::vector<double>& levels) {
  if (levels.empty()) return std::numeric_limits<double>::quiet_NaN();
  const double highest = *std::max_element(levels.begin(), levels.end());
  double sum = 0;
  for (const double level : levels) sum += powerOfTen(0.1 * (level - highest));
  return highest + 10 * logarithmOfTen(sum);
}

/// Without a weighting, all bands count.
double relativeSum(const CountedLevels& record, const Weighting* weighting) {
  std::vector<double> levels;
  for (std::int32_t band = record.low(); band < record.end(); ++band) {
    const double level = record.level(band);
    const bool isWeighted = band >= kFirstWeightedBand && band <= kLastWeightedBand;
    if (std::isnan(level) || (weighting != nullptr && !isWeighted)) continue;
    const auto at = static_cast<std::size_t>(band - kFirstWeightedBand);
    levels.push_back(weighting == nullptr ? level : level + (*weighting)[at]);
  }
  return relativeSum(levels);
}

std::optional<double> valueOf(double level) {
  if (std::isnan(level)) return std::nullopt;
  return level;
}

double energyOf(double level) { return powerOfTen(0.1 * level); }

/// Calls `add` with each band and its energy 10^(0.1 L), which is infinite for levels L above about
/// 3,080 dB. A band whose level does not count is left out or passed with 0.
template <class Add>
void forEachEnergy(const CountedLevels& record, const Add& add) {
  static const LevelTable table(&energyOf);
  std::int32_t band = record.low();
  if (record.isCoded()) {
    for (const LevelCode code : record.codes(band, record.end())) add(band++, table.of(code));
  }
  for (; band < record.end(); ++band) {
    const double level = record.level(band);
    if (!std::isnan(level)) add(band, energyOf(level));
  }
}

/// The sums of the energies by type.
WeightedLevels energySums(const CountedLevels& record) {
  static const auto kFactors = factorsOfBands();
  static constexpr Factors kOther{0, 0, 0, 1};  // of a band that no weighting covers
  std::array<Lanes, std::tuple_size_v<Factors> / kLanes> sums{};
  forEachEnergy(record, [&](std::int32_t band, double energy) {
    const auto at = static_cast<std::size_t>(band - kFirstWeightedBand);
    const Factors& factors = at < kFactors.size() ? kFactors[at] : kOther;
    for (std::size_t i = 0; i < sums.size(); ++i) sums[i] += energy * lanesAt(&factors[i * kLanes]);
  });
  WeightedLevels found;
  for (std::size_t i = 0; i < sums.size(); ++i) putLanes(&found[i * kLanes], sums[i]);
  return found;
}

}  // namespace

WeightedLevels weightedLevelsOf(const CountedLevels& record) {
  WeightedLevels levels = energySums(record);
  for (std::size_t type = 0; type < levels.size(); ++type) {
    const bool isInRange = levels[type] > 0 && std::isfinite(levels[type]);
    levels[type] = isInRange ? 10 * logarithmOfTen(levels[type])
                             : relativeSum(record, type < kWeightings ? kWeights[type] : nullptr);
  }
  return levels;
}

std::optional<double> energySum(std::span<const double> levels) {
  std::vector<double> counted;
  std::copy_if(levels.begin(), levels.end(), std::back_inserter(counted),
               [](double level) { return std::isfinite(level) && level != kInvalidLevel; });
  return valueOf(relativeSum(counted));
}

std::optional<double> weightedLevel(const AQ_Spectrum& spectrum, AQ_METRIC_TYPE weighting,
                                    const AQ_MaskRow* masks) {
  if (weighting < AQ_METRIC_AWT || weighting > AQ_METRIC_OA) {
    throw Error(ErrorCode::InvalidArgument,
                "expected the type of a weighted or overall level, found " +
                    std::to_string(std::int32_t{weighting}));
  }
  const WeightedLevels levels = weightedLevelsOf(CountedLevels(spectrum, masks));
  return valueOf(levels[static_cast<std::size_t>(weighting - AQ_METRIC_AWT)]);
}

}  // namespace aq
