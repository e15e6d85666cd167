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

/// The factors by band, those of one band contiguous.
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

/// The level of the sum of levels that count, computed relative to the highest, so that energies
/// may exceed the range of a double. NaN if no level counts.
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

}  // namespace

WeightedLevels weightedLevelsOf(const RecordBlock& block) {
  static const Factors kFactors = factorsOfAll();
  WeightedLevels found{};
  BlockRow& overall = found[kWeightings];
  overall = block.otherEnergies();
  for (std::size_t i = 0; i < kFactors.size(); ++i) {
    const BlockRow& energies = block.energies(kFirstWeightedBand + static_cast<std::int32_t>(i));
    for (std::size_t type = 0; type < kWeightings; ++type) {
      const double factor = kFactors[i][type];
      for (std::size_t r = 0; r < kBlockRecords; ++r) found[type][r] += energies[r] * factor;
    }
    for (std::size_t r = 0; r < kBlockRecords; ++r) overall[r] += energies[r];
  }
  for (std::size_t type = 0; type < found.size(); ++type) {
    const Weighting* const weighting = type < kWeightings ? kWeights[type] : nullptr;
    for (std::size_t r = 0; r < block.size(); ++r) {
      const double energy = found[type][r];
      const bool isInRange = energy > 0 && std::isfinite(energy);
      found[type][r] =
          isInRange ? 10 * logarithmOfTen(energy) : relativeSum(block.record(r), weighting);
    }
  }
  return found;
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
  const WeightedLevels levels = weightedLevelsOf(RecordBlock(spectrum, masks));
  return valueOf(levels[static_cast<std::size_t>(weighting - AQ_METRIC_AWT)][0]);
}

}  // namespace aq
