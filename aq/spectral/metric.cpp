#include "aq/spectral/metric.h"

#include <algorithm>

namespace aq {
namespace {

auto hasType(AQ_METRIC_TYPE type) {
  return [type](const auto& entry) { return entry.first == type; };
}

}  // namespace

std::shared_ptr<AQ_Metric> AQ_Metric::Copy() const {
  auto copy = std::make_shared<AQ_Metric>();
  copy->values_.reserve(AQ_METRIC_INTEG);
  for (std::int32_t type = AQ_METRIC_AWT; type <= AQ_METRIC_INTEG; ++type) {
    const auto metric = static_cast<AQ_METRIC_TYPE>(type);
    copy->MetricValue(metric, MetricValue(metric));
  }
  return copy;
}

Variant AQ_Metric::MetricValue(AQ_METRIC_TYPE aqMetric) const {
  const auto entry = std::find_if(values_.begin(), values_.end(), hasType(aqMetric));
  return entry == values_.end() ? Variant(std::int16_t{0}) : entry->second;
}

void AQ_Metric::MetricValue(AQ_METRIC_TYPE aqMetric, const Variant& value) {
  Variant stored = value;
  if (aqMetric >= AQ_METRIC_CWT && aqMetric <= AQ_METRIC_LGB) stored = value.toSingle();
  if (aqMetric == AQ_METRIC_INTEG) stored = value.toInt32();
  const auto entry = std::find_if(values_.begin(), values_.end(), hasType(aqMetric));
  if (entry == values_.end()) {
    values_.emplace_back(aqMetric, std::move(stored));
  } else {
    entry->second = std::move(stored);
  }
}

bool AQ_Metric::contains(AQ_METRIC_TYPE aqMetric) const {
  return std::any_of(values_.begin(), values_.end(), hasType(aqMetric));
}

void AQ_Metric::remove(AQ_METRIC_TYPE aqMetric) { std::erase_if(values_, hasType(aqMetric)); }

}  // namespace aq
