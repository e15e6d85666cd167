#include "aq/spectral/metric_summary.h"

#include <algorithm>
#include <array>
#include <cstddef>

#include "aq/text/number_text.h"

namespace aq {
namespace {

/// The names of the metrics by code, from `AQ_METRIC_AWT` up.
constexpr std::array<std::string_view, 10> kNames{"AWT",  "CWT",     "DWT",     "OA",  "PNL",
                                                  "PNLT", "TONECOR", "TONEBND", "LGB", "INTEG"};

}  // namespace

std::shared_ptr<AQ_MetricSummary> AQ_MetricSummary::Copy() const {
  auto copy = std::make_shared<AQ_MetricSummary>();
  for (const AQ_METRIC_TYPE type : *types_) copy->MetricType(type);
  return copy;
}

void AQ_MetricSummary::MetricType(AQ_METRIC_TYPE aqMetric) {
  const std::string key = numberText(std::int32_t{aqMetric});
  if (types_->contains(key)) types_->Remove(key);
  types_->Add(aqMetric, key);
}

bool AQ_MetricSummary::isMetric(AQ_METRIC_TYPE aqMetric) const {
  return types_->contains(numberText(std::int32_t{aqMetric}));
}

std::string AQ_MetricSummary::MetricTypeString() const {
  std::string text;
  for (const AQ_METRIC_TYPE type : *types_) {
    const auto at = static_cast<std::size_t>(std::int64_t{type} - AQ_METRIC_AWT);
    if (at >= kNames.size()) continue;
    if (!text.empty()) text += ", ";
    text += kNames[at];
  }
  return text;
}

void AQ_MetricSummary::MetricTypeString(std::string_view name) {
  const auto found = std::find(kNames.begin(), kNames.end(), upperCased(name));
  if (found == kNames.end()) return;
  const auto type = static_cast<AQ_METRIC_TYPE>(AQ_METRIC_AWT + (found - kNames.begin()));
  if (!isMetric(type)) MetricType(type);
}

}  // namespace aq
