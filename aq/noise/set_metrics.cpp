#include "aq/noise/set_metrics.h"

#include <cmath>
#include <cstddef>
#include <memory>
#include <utility>
#include <vector>

#include "aq/noise/history_metrics.h"

namespace aq {
namespace {

constexpr AQ_METRIC_TYPE kFirst = AQ_METRIC_AWT;

/// Calls `visit` with each of the ten metric types.
template <class Visit>
void forEachMetric(const Visit& visit) {
  for (std::int32_t type = kFirst; type <= AQ_METRIC_INTEG; ++type) {
    visit(static_cast<AQ_METRIC_TYPE>(type));
  }
}

/// Throws `Overflow` unless every value fits in single precision.
void checkRange(const RecordMetrics& computed) {
  for (const double value : computed.values) {
    if (!std::isnan(value)) static_cast<void>(Variant(value).toSingle());
  }
}

/// Replaces the values of `metric` with the computed ones. Cannot fail for values that `checkRange`
/// accepts.
void renew(AQ_Metric& metric, const RecordMetrics& computed, bool withLastGoodBand) {
  forEachMetric([&](AQ_METRIC_TYPE type) {
    if (computed.has(type)) {
      metric.MetricValue(type, static_cast<float>(computed.value(type)));
    } else if (type != AQ_METRIC_LGB || withLastGoodBand) {
      metric.remove(type);
    }
  });
}

}  // namespace

std::optional<NoiseEvent> setMetrics(AQ_SpectralTimeHistory& history, const AQ_MaskMap* map) {
  HistoryMetrics computed = historyMetrics(history, map);

  // Everything that can fail is done before the first value changes.
  std::vector<std::shared_ptr<AQ_Metric>> held;
  held.reserve(computed.records.size());
  for (const auto& [number, spectrum] : history) held.push_back(spectrum->Metric());
  for (const RecordMetrics& record : computed.records) checkRange(record);
  auto summary = history.Metrics()->Copy();
  forEachMetric([&](AQ_METRIC_TYPE type) { summary->MetricType(type); });

  for (std::size_t i = 0; i < held.size(); ++i) {
    renew(*held[i], computed.records[i], map != nullptr);
  }
  *history.Metrics()->MetricTypes() = std::move(*summary->MetricTypes());
  return std::move(computed.event);
}

}  // namespace aq
