#include "aq/spectral/spectrum.h"

#include <algorithm>
#include <iterator>
#include <string>

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
  copy->Time(Time()->Copy());
  copy->Level(level_);
  copy->levels_ = levels_;
  copy->bands_ = bands_;
  copy->Metric(Metric()->Copy());
  return copy;
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
  widen(low, levels.size());
}

void AQ_Spectrum::assignCodes(std::int16_t low, std::span<const LevelCode> codes) {
  levels_.assign(low, codes);
  widen(low, codes.size());
}

std::span<const LevelCode> AQ_Spectrum::levelCodes() const {
  const auto levels = levels_.codes();
  return spans(levels.size()) ? levels : std::span<const LevelCode>();
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
  return spans(levels.size()) ? levels : std::span<const double>();
}

/// The range is wider than the levels when all bands lie below -1 or above 9999.
bool AQ_Spectrum::spans(std::size_t levels) const {
  return bands_.high - bands_.low + 1 == static_cast<int>(levels);
}

void AQ_Spectrum::widen(std::int16_t low, std::size_t levels) {
  if (levels == 0) return;
  bands_.widen(low);
  bands_.widen(static_cast<std::int16_t>(low + static_cast<int>(levels) - 1));
}

}  // namespace aq
