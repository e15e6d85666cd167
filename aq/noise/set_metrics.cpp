#include "aq/noise/set_metrics.h"

#include <memory>
#include <utility>
#include <vector>

#include "aq/noise/history_metrics.h"

namespace aq {
namespace {

constexpr AQ_METRIC_TYPE kFirst = AQ_METRIC_AWT;

/// Calls `visit` with each of the ten types.
template <class Visit>
void forEachMetric(const Visit& visit) {
  for (std::int32_t type = kFirst; type <= AQ_METRIC_INTEG; ++type) {
    visit(static_cast<AQ_METRIC_TYPE>(type));
  }
}

/// The metric record with the computed values in place of its own.
AQ_Metric renewed(AQ_Metric metric, const RecordMetrics& computed, bool withLastGoodBand) {
  forEachMetric([&](AQ_METRIC_TYPE type) {
    if (computed.has(type)) {
      metric.MetricValue(type, Variant(computed.value(type)).toSingle());
    } else if (type != AQ_METRIC_LGB || withLastGoodBand) {
      metric.remove(type);
    }
  });
  return metric;
}

}  // namespace

std::optional<NoiseEvent> setMetrics(AQ_SpectralTimeHistory& history, const AQ_MaskMap* map) {
  HistoryMetrics computed = historyMetrics(history, map);

  // All that may fail is done before the first record changes.
  std::vector<std::pair<std::shared_ptr<AQ_Metric>, AQ_Metric>> metrics;
  metrics.reserve(computed.records.size());
  for (const RecordMetrics& record : computed.records) {
    auto held = history.spectrum(record.record)->Metric();
    AQ_Metric metric = renewed(*held, record, map != nullptr);
    metrics.emplace_back(std::move(held), std::move(metric));
  }
  auto summary = history.Metrics()->Copy();
  forEachMetric([&](AQ_METRIC_TYPE type) { summary->MetricType(type); });

  for (auto& [held, metric] : metrics) *held = std::move(metric);
  *history.Metrics()->MetricTypes() = std::move(*summary->MetricTypes());
  return std::move(computed.event);
}

}  // namespace aq
