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
#include "aq/noise/power_of_ten.h"
#include "aq/noise/record_levels.h"
#include "aq/noise/weightings.h"

namespace aq {
namespace {

constexpr std::size_t kWeightings = 3;  // A, C and D

/// The factors by band, those of a band side by side.
using Factors = std::array<std::array<double, kWeightings>, std::tuple_size_v<Weighting>>;

constexpr std::array<const Weighting*, kWeightings> kWeights{&kWeightingA, &kWeightingC,
                                                             &kWeightingD};

Factors factorsOfAll() {
  Factors factors{};
  for (std::size_t type = 0; type < kWeightings; ++type) {
    for (std::size_t i = 0; i < factors.size(); ++i) {
      factors[i][type] = powerOfTen(0.1 * (*kWeights[type])[i]);
    }
  }
  return factors;
}

/// The level of a sum of energies that are beyond a number's range: relative to the highest. No
/// weights are weights of 0.
double relativeSum(std::span<const double> levels, std::span<const double> weights) {
  std::vector<double> weighted(levels.begin(), levels.end());
  for (std::size_t i = 0; i < weights.size(); ++i) weighted[i] += weights[i];
  std::erase_if(weighted, [](double level) { return std::isnan(level); });
  if (weighted.empty()) return std::numeric_limits<double>::quiet_NaN();
  const double highest = *std::max_element(weighted.begin(), weighted.end());
  double sum = 0;
  for (const double level : weighted) sum += powerOfTen(0.1 * (level - highest));
  return highest + 10 * logarithmOfTen(sum);
}

double levelOfSum(double energy, std::span<const double> levels, std::span<const double> weights) {
  if (energy > 0 && std::isfinite(energy)) return 10 * logarithmOfTen(energy);
  return relativeSum(levels, weights);
}

/// The bands that a record and the weightings share.
struct SharedBands {
  explicit SharedBands(const CountedLevels& record) {
    const auto bands = static_cast<std::int32_t>(record.levels().size());
    const std::int32_t begin = std::max<std::int32_t>(record.low(), kFirstWeightedBand);
    const std::int32_t end = std::min<std::int32_t>(record.low() + bands, kLastWeightedBand + 1);
    if (begin >= end) return;
    count = static_cast<std::size_t>(end - begin);
    place = static_cast<std::size_t>(begin - record.low());
    weight = static_cast<std::size_t>(begin - kFirstWeightedBand);
  }

  std::size_t count = 0;
  std::size_t place = 0;   // of the first one in the record
  std::size_t weight = 0;  // and in a weighting
};

std::optional<double> valueOf(double level) {
  if (std::isnan(level)) return std::nullopt;
  return level;
}

}  // namespace

WeightedLevels weightedLevelsOf(const CountedLevels& record) {
  static const Factors kFactors = factorsOfAll();
  const SharedBands bands(record);
  const auto levels = record.levels();
  const auto energies = record.energies();
  std::array<double, kWeightings> sums{};
  for (std::size_t i = 0; i < bands.count; ++i) {
    const auto& factors = kFactors[bands.weight + i];
    const double energy = energies[bands.place + i];
    for (std::size_t type = 0; type < kWeightings; ++type) sums[type] += energy * factors[type];
  }
  WeightedLevels found{};
  for (std::size_t type = 0; type < kWeightings; ++type) {
    found[type] = levelOfSum(sums[type], levels.subspan(bands.place, bands.count),
                             std::span(*kWeights[type]).subspan(bands.weight, bands.count));
  }
  const double overall = std::accumulate(energies.begin(), energies.end(), 0.0);
  found[kWeightings] = levelOfSum(overall, levels, {});
  return found;
}

std::optional<double> energySum(std::span<const double> levels) {
  std::vector<double> counted;
  std::copy_if(levels.begin(), levels.end(), std::back_inserter(counted),
               [](double level) { return std::isfinite(level) && level != kInvalidLevel; });
  return valueOf(relativeSum(counted, {}));
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
