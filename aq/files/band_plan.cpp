#include "aq/files/band_plan.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <optional>
#include <string>
#include <utility>

#include "aq/text/fields.h"
#include "aq/text/number_text.h"

namespace aq {
namespace {

constexpr int kBandsOfDecade = 10;
constexpr std::int16_t kFirstBand = 2;
constexpr std::int16_t kLastBand = 50;

double frequencyOf(double band) { return std::pow(10, band / kBandsOfDecade); }

bool isHeld(int band) { return band >= kFirstBand && band <= kLastBand; }

/// The band with that centre frequency; nothing if there is none.
std::optional<int> bandAt(double frequency) {
  constexpr double kFarthest = 0.03;  // nominal and base-2 centres deviate by less
  if (!(frequency > 0) || !std::isfinite(frequency)) return std::nullopt;
  const double band = std::round(kBandsOfDecade * std::log10(frequency));
  if (std::abs(frequency / frequencyOf(band) - 1) > kFarthest) return std::nullopt;
  return static_cast<int>(band);
}

/// The edges of bins, halfway between their centres; the outer edges of the first and last bins
/// are as far from their centres as the inner ones.
std::vector<double> edgesOf(std::span<const double> x) {
  std::vector<double> edges(x.size() + 1);
  for (std::size_t i = 1; i < x.size(); ++i) {
    edges[i] = (x[i - 1] + x[i]) / 2;
    if (!(x[i - 1] < x[i])) {
      failRead(0, 0, "ascending frequencies", exactText(x[i - 1]) + " before " + exactText(x[i]));
    }
  }
  edges.front() = 2 * x.front() - edges[1];
  edges.back() = 2 * x.back() - edges[x.size() - 1];
  return edges;
}

}  // namespace

BandPlan BandPlan::ofOctaves(std::span<const double> x) {
  std::size_t count = x.size();
  while (count > 0 && std::isfinite(x[count - 1]) && !bandAt(x[count - 1])) --count;
  BandPlan plan;
  int before = std::numeric_limits<int>::min();
  for (std::size_t point = 0; point < count; ++point) {
    const auto band = bandAt(x[point]);
    if (!band) {
      failRead(0, 0, "the frequency of a third octave at point " + std::to_string(point),
               exactText(x[point]));
    }
    if (*band <= before) {
      failRead(0, 0, "ascending bands", std::to_string(*band) + " after " + std::to_string(before));
    }
    before = *band;
    if (isHeld(*band))
      plan.parts_.push_back({static_cast<std::int16_t>(*band), point, point, 1, 0});
  }
  if (plan.parts_.empty()) failRead(0, 0, "a band from 2 to 50", "none");
  return plan;
}

BandPlan BandPlan::ofBins(std::span<const double> x, std::size_t start, std::size_t end) {
  constexpr double kFewest = 3;
  constexpr double kHalf = 0.5;  // of a band
  BandPlan plan;
  if (end > start + 1) {
    const std::vector<double> edges = edgesOf(x.subspan(start, end - start));
    const auto shareOf = [&](std::size_t bin, double low, double high) {
      return (std::min(high, edges[bin + 1]) - std::max(low, edges[bin])) /
             (edges[bin + 1] - edges[bin]);
    };
    for (std::int16_t band = kFirstBand; band <= kLastBand; ++band) {
      const double low = frequencyOf(band - kHalf);
      const double high = frequencyOf(band + kHalf);
      if (low < edges.front() || high > edges.back()) continue;
      const auto binOf = [&](auto edge) {
        return static_cast<std::size_t>(edge - edges.begin()) - 1;
      };
      const std::size_t first = binOf(std::upper_bound(edges.begin(), edges.end(), low));
      const std::size_t last = binOf(std::lower_bound(edges.begin(), edges.end(), high));
      const Part part{band, start + first, start + last, shareOf(first, low, high),
                      shareOf(last, low, high)};
      const double wide = part.ofFirst + part.ofLast + static_cast<double>(last - first) - 1;
      if (last > first && wide >= kFewest) plan.parts_.push_back(part);
    }
  }
  if (plan.parts_.empty()) {
    failRead(0, 0, "a band from 2 to 50 that at least three bins cover completely", "none");
  }
  return plan;
}

bool BandPlan::isWhole() const {
  return std::cmp_equal(parts_.size(), parts_.back().band - parts_.front().band + 1);
}

}  // namespace aq
