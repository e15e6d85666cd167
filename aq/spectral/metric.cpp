#include "aq/spectral/metric.h"

#include <algorithm>

namespace aq {
namespace {

auto hasType(AQ_METRIC_TYPE type) {
  return [type](const auto& entry) { return entry.first == type; };
}

bool isMetric(AQ_METRIC_TYPE type) { return type >= AQ_METRIC_AWT && type <= AQ_METRIC_INTEG; }

std::size_t bitOf(AQ_METRIC_TYPE type) { return static_cast<std::size_t>(type); }

/// The index of a metric among those kept in single precision.
std::size_t singleOf(AQ_METRIC_TYPE type) { return static_cast<std::size_t>(type - AQ_METRIC_CWT); }

}  // namespace

std::shared_ptr<AQ_Metric> AQ_Metric::Copy() const {
  auto copy = std::make_shared<AQ_Metric>();
  for (std::int32_t type = AQ_METRIC_AWT; type <= AQ_METRIC_INTEG; ++type) {
    const auto metric = static_cast<AQ_METRIC_TYPE>(type);
    copy->MetricValue(metric, MetricValue(metric));
  }
  return copy;
}

Variant AQ_Metric::MetricValue(AQ_METRIC_TYPE aqMetric) const {
  if (!contains(aqMetric)) return std::int16_t{0};
  if (aqMetric == AQ_METRIC_AWT) return awt_;
  if (aqMetric == AQ_METRIC_INTEG) return flags_;
  if (isMetric(aqMetric)) return singles_[singleOf(aqMetric)];
  return std::find_if(others_->begin(), others_->end(), hasType(aqMetric))->second;
}

void AQ_Metric::MetricValue(AQ_METRIC_TYPE aqMetric, const Variant& value) {
  if (!isMetric(aqMetric)) {
    Others& others = others_.orCreate();
    const auto entry = std::find_if(others.begin(), others.end(), hasType(aqMetric));
    if (entry == others.end()) {
      others.emplace_back(aqMetric, value);
    } else {
      entry->second = value;
    }
    return;
  }
  if (aqMetric == AQ_METRIC_AWT) {
    awt_ = value;
  } else if (aqMetric == AQ_METRIC_INTEG) {
    flags_ = value.toInt32();
  } else {
    singles_[singleOf(aqMetric)] = value.toSingle();
  }
  set_.set(bitOf(aqMetric));
}

bool AQ_Metric::contains(AQ_METRIC_TYPE aqMetric) const {
  if (isMetric(aqMetric)) return set_.test(bitOf(aqMetric));
  return others_ && std::any_of(others_->begin(), others_->end(), hasType(aqMetric));
}

void AQ_Metric::remove(AQ_METRIC_TYPE aqMetric) {
  if (isMetric(aqMetric)) {
    set_.reset(bitOf(aqMetric));
  } else if (others_) {
    std::erase_if(others_.orCreate(), hasType(aqMetric));
  }
}

}  // namespace aq
