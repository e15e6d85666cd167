#pragma once

#include <memory>
#include <string>
#include <string_view>

#include "aq/core/collection.h"
#include "aq/core/enumerations.h"
#include "aq/core/export.h"

namespace aq {

/// The metrics that a spectral time history carries, as an ordered list and as text.
class AQ_API AQ_MetricSummary {
 public:
  [[nodiscard]] std::shared_ptr<AQ_MetricSummary> Copy() const;

  /// Adds a metric, or moves it to the end if it is already listed.
  void MetricType(AQ_METRIC_TYPE aqMetric);

  /// The summary's own list, not a copy.
  [[nodiscard]] std::shared_ptr<Collection<AQ_METRIC_TYPE>> MetricTypes() const { return types_; }

  [[nodiscard]] bool isMetric(AQ_METRIC_TYPE aqMetric) const;

  /// The list as text, as in "AWT, PNLT, LGB". Setting adds the metric with that name, ignoring
  /// case, unless it is already listed. Other text is ignored.
  [[nodiscard]] std::string MetricTypeString() const;
  void MetricTypeString(std::string_view name);

 private:
  std::shared_ptr<Collection<AQ_METRIC_TYPE>> types_ =
      std::make_shared<Collection<AQ_METRIC_TYPE>>();
};

}  // namespace aq
