#include "aq/spectral/metric.h"

namespace aq {

std::shared_ptr<AQ_Metric> AQ_Metric::Copy() const {
  auto copy = std::make_shared<AQ_Metric>();
  for (std::int32_t type = AQ_METRIC_AWT; type <= AQ_METRIC_INTEG; ++type) {
    const auto metric = static_cast<AQ_METRIC_TYPE>(type);
    copy->MetricValue(metric, MetricValue(metric));
  }
  return copy;
}

Variant AQ_Metric::MetricValue(AQ_METRIC_TYPE aqMetric) const {
  const auto entry = values_.find(aqMetric);
  return entry == values_.end() ? Variant(std::int16_t{0}) : entry->second;
}

void AQ_Metric::MetricValue(AQ_METRIC_TYPE aqMetric, const Variant& value) {
  Variant stored = value;
  if (aqMetric >= AQ_METRIC_CWT && aqMetric <= AQ_METRIC_LGB) stored = value.toSingle();
  if (aqMetric == AQ_METRIC_INTEG) stored = value.toInt32();
  values_.insert_or_assign(aqMetric, std::move(stored));
}

}  // namespace aq
