#include "aq/noise/weighted_level.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <iterator>
#include <numeric>
#include <span>
#include <string>
#include <vector>

#include "aq/core/error.h"
#include "aq/noise/power_of_ten.h"
#include "aq/noise/record_levels.h"
#include "aq/noise/weightings.h"

namespace aq {
namespace {

/// The weights of a weighting as factors of energy.
Weighting factorsOf(const Weighting& weights) {
  Weighting factors{};
  std::transform(weights.begin(), weights.end(), factors.begin(),
                 [](double weight) { return powerOfTen(0.1 * weight); });
  return factors;
}

struct WeightingTable {
  Weighting weights;
  Weighting factors = factorsOf(weights);
};

const WeightingTable& tableOf(AQ_METRIC_TYPE weighting) {
  static const std::array<WeightingTable, 3> tables{{{kWeightingA}, {kWeightingC}, {kWeightingD}}};
  return tables[static_cast<std::size_t>(weighting - AQ_METRIC_AWT)];
}

/// The level of a sum of energies that are beyond a number's range: relative to the highest. No
/// weights are weights of 0.
std::optional<double> relativeSum(std::span<const double> levels, std::span<const double> weights) {
  std::vector<double> weighted(levels.begin(), levels.end());
  for (std::size_t i = 0; i < weights.size(); ++i) weighted[i] += weights[i];
  std::erase_if(weighted, [](double level) { return std::isnan(level); });
  if (weighted.empty()) return std::nullopt;
  const double highest = *std::max_element(weighted.begin(), weighted.end());
  double sum = 0;
  for (const double level : weighted) sum += powerOfTen(0.1 * (level - highest));
  return highest + 10 * std::log10(sum);
}

std::optional<double> levelOfSum(double energy, std::span<const double> levels,
                                 std::span<const double> weights) {
  if (energy > 0 && std::isfinite(energy)) return 10 * std::log10(energy);
  return relativeSum(levels, weights);
}

std::optional<double> overallLevelOf(const CountedLevels& record) {
  const auto energies = record.energies();
  const double energy = std::accumulate(energies.begin(), energies.end(), 0.0);
  return levelOfSum(energy, record.levels(), {});
}

}  // namespace

std::optional<double> weightedLevelOf(const CountedLevels& record, AQ_METRIC_TYPE weighting) {
  if (weighting == AQ_METRIC_OA) return overallLevelOf(record);
  if (weighting < AQ_METRIC_AWT || weighting > AQ_METRIC_DWT) {
    throw Error(ErrorCode::InvalidArgument,
                "expected the type of a weighted or overall level, found " +
                    std::to_string(std::int32_t{weighting}));
  }
  // The bands that record and weighting share.
  const auto bands = static_cast<std::int32_t>(record.levels().size());
  const std::int32_t begin = std::max<std::int32_t>(record.low(), kFirstWeightedBand);
  const std::int32_t end = std::min<std::int32_t>(record.low() + bands, kLastWeightedBand + 1);
  if (begin >= end) return std::nullopt;
  const auto count = static_cast<std::size_t>(end - begin);
  const auto place = static_cast<std::size_t>(begin - record.low());
  const auto weight = static_cast<std::size_t>(begin - kFirstWeightedBand);

  const WeightingTable& table = tableOf(weighting);
  const auto factors = std::span(table.factors).subspan(weight, count);
  const auto energies = record.energies().subspan(place, count);
  const double energy = std::inner_product(energies.begin(), energies.end(), factors.begin(), 0.0);
  return levelOfSum(energy, record.levels().subspan(place, count),
                    std::span(table.weights).subspan(weight, count));
}

std::optional<double> energySum(std::span<const double> levels) {
  std::vector<double> counted;
  std::copy_if(levels.begin(), levels.end(), std::back_inserter(counted),
               [](double level) { return std::isfinite(level) && level != kInvalidLevel; });
  return relativeSum(counted, {});
}

std::optional<double> weightedLevel(const AQ_Spectrum& spectrum, AQ_METRIC_TYPE weighting,
                                    const AQ_MaskRow* masks) {
  return weightedLevelOf(CountedLevels(spectrum, masks), weighting);
}

}  // namespace aq
