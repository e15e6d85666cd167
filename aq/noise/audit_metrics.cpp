#include "aq/noise/audit_metrics.h"

#include <cmath>
#include <limits>
#include <string>

#include "aq/core/error.h"
#include "aq/noise/history_metrics.h"

namespace aq {
namespace {

constexpr double kNotComputed = std::numeric_limits<double>::quiet_NaN();

bool isLevel(AQ_METRIC_TYPE metric) {
  return metric != AQ_METRIC_TONEBND && metric != AQ_METRIC_LGB && metric != AQ_METRIC_INTEG;
}

/// The stored value as a number; NaN if it does not convert to one.
double storedNumber(const Variant& stored) {
  try {
    return stored.toDouble();
  } catch (const Error&) {
    return kNotComputed;
  }
}

/// A computed value, rounded to single precision if the stored one is single.
double narrowed(double computed, const Variant& stored) {
  return stored.type() == Variant::Type::Single ? static_cast<double>(static_cast<float>(computed))
                                                : computed;
}

bool differ(AQ_METRIC_TYPE metric, double stored, double computed, double tolerance) {
  if (std::isnan(computed)) return stored != 0;
  const double limit = isLevel(metric) ? tolerance : 0;
  return !(std::abs(stored - computed) <= limit);
}

void auditRecord(const AQ_Metric& metrics, const RecordMetrics& computed, bool withMap,
                 double tolerance, std::vector<MetricDifference>& differences) {
  for (std::int32_t type = AQ_METRIC_AWT; type <= AQ_METRIC_INTEG; ++type) {
    const auto metric = static_cast<AQ_METRIC_TYPE>(type);
    if (!metrics.contains(metric) || (metric == AQ_METRIC_LGB && !withMap)) continue;
    const Variant value = metrics.MetricValue(metric);
    const double stored = storedNumber(value);
    const double expected = narrowed(computed.value(metric), value);
    if (!differ(metric, stored, expected, tolerance)) continue;
    differences.push_back({computed.record, metric, stored, expected});
  }
}

}  // namespace

std::vector<MetricDifference> auditMetrics(const AQ_SpectralTimeHistory& history,
                                           const AQ_MaskMap* map, double tolerance) {
  if (!(tolerance >= 0)) {
    throw Error(ErrorCode::InvalidArgument,
                "expected a tolerance of 0 dB or more, found " + std::to_string(tolerance));
  }
  std::vector<MetricDifference> differences;
  for (const RecordMetrics& computed : historyMetrics(history, map).records) {
    const auto spectrum = history.spectrum(computed.record);
    if (!spectrum->hasMetric()) continue;
    auditRecord(*spectrum->Metric(), computed, map != nullptr, tolerance, differences);
  }
  return differences;
}

}  // namespace aq
