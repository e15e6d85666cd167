#include "aq/spectral/spectrum.h"

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

std::shared_ptr<AQ_Time> AQ_Spectrum::Time() {
  if (!time_) time_ = std::make_shared<AQ_Time>(timeValue());
  return time_;
}

void AQ_Spectrum::assignTime(double timeOfDay, double relativeSeconds) {
  time_.reset();
  timeOfDay_ = timeOfDay;
  relativeSeconds_ = relativeSeconds;
}

AQ_Time AQ_Spectrum::timeValue() const {
  if (time_) return *time_;
  AQ_Time time;
  time.assignSeconds(timeOfDay_, relativeSeconds_);
  return time;
}

std::span<const double> AQ_Spectrum::plainLevels() const {
  const auto levels = levels_.plain();
  // The range is wider than the levels when all bands lie below -1 or above 9999.
  const int size = bands_.high - bands_.low + 1;
  return static_cast<int>(levels.size()) == size ? levels : std::span<const double>();
}

void AQ_Spectrum::assignLevels(std::int16_t low, std::span<const double> levels) {
  levels_.assign(low, levels);
  if (levels.empty()) return;
  bands_.widen(low);
  bands_.widen(static_cast<std::int16_t>(low + static_cast<int>(levels.size()) - 1));
}

}  // namespace aq
