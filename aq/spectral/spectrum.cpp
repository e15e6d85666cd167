#include "aq/spectral/spectrum.h"

#include <algorithm>
#include <iterator>
#include <string>
#include <utility>

namespace aq {
namespace {

[[noreturn]] void failMissing(std::int32_t band) {
  throw Error(ErrorCode::InvalidArgument, "band " + std::to_string(band) + " has no level");
}

}  // namespace

std::shared_ptr<AQ_Spectrum> AQ_Spectrum::Copy() {
  for (std::int32_t band = bands_.low; band <= bands_.high; ++band) {
    if (!levels_.contains(static_cast<std::int16_t>(band))) failMissing(band);
  }
  auto copy = std::make_shared<AQ_Spectrum>();
  copy->time_ = time_.copied();
  copy->levels_ = levels_;
  copy->bands_ = bands_;
  if (extras_) copy->Level(Level());
  if (hasMetric()) copy->extras_.orCreate().metric = extras_->metric->Copy();
  copy->copied_ = !hasMetric();
  return copy;
}

std::shared_ptr<AQ_Metric> AQ_Spectrum::Metric() {
  auto& metric = extras_.orCreate().metric;
  if (!metric && std::exchange(copied_, false)) metric = AQ_Metric().Copy();
  return orCreate(metric);
}

Variant AQ_Spectrum::SPL(std::int16_t nBand) const {
  auto level = levels_.find(nBand);
  if (!level) failMissing(nBand);
  return *std::move(level);
}

void AQ_Spectrum::SPL(std::int16_t nBand, const Variant& level) {
  levels_.store(nBand, level);
  bands_.widen(nBand);
}

void AQ_Spectrum::assignLevels(std::int16_t low, std::span<const double> levels) {
  levels_.assign(low, levels);
  bands_.widen(low, levels.size());
}

void AQ_Spectrum::assignCodes(std::int16_t low, std::span<const LevelCode> codes) {
  levels_.assign(low, codes);
  bands_.widen(low, codes.size());
}

std::span<const LevelCode> AQ_Spectrum::levelCodes() const {
  const auto levels = levels_.codes();
  return bands_.holds(levels.size()) ? levels : std::span<const LevelCode>();
}

std::vector<double> AQ_Spectrum::plainLevels() const {
  const auto codes = levelCodes();
  const auto doubles = levelDoubles();
  std::vector<double> levels(doubles.begin(), doubles.end());
  std::transform(codes.begin(), codes.end(), std::back_inserter(levels), levelOf);
  return levels;
}

std::span<const double> AQ_Spectrum::levelDoubles() const {
  const auto levels = levels_.plain();
  return bands_.holds(levels.size()) ? levels : std::span<const double>();
}

std::span<const double> AQ_Spectrum::levelNumbers() const {
  const auto levels = levels_.numbers();
  return bands_.holds(levels.size()) ? levels : std::span<const double>();
}

}  // namespace aq
