#pragma once

#include <array>
#include <bitset>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <utility>
#include <vector>

#include "aq/core/enumerations.h"
#include "aq/core/export.h"
#include "aq/core/variant.h"
#include "aq/detail/lazy_part.h"

namespace aq {

/// The noise metrics computed for one spectrum. A metric that was never set reads as 0; reading
/// never fails. Levels are in decibels.
class AQ_API AQ_Metric {
 public:
  /// The A-weighted level, dB; keeps the type of the value that was set.
  [[nodiscard]] Variant AWT() const { return MetricValue(AQ_METRIC_AWT); }
  void AWT(const Variant& level) { MetricValue(AQ_METRIC_AWT, level); }

  /// A new object with the same values. In the copy every metric is set, to 0 if this object lacks
  /// it. Values stored under a number that is not a metric are not copied.
  [[nodiscard]] std::shared_ptr<AQ_Metric> Copy() const;

  /// The C-weighted level, dB.
  [[nodiscard]] float CWT() const { return single(AQ_METRIC_CWT); }
  void CWT(float level) { MetricValue(AQ_METRIC_CWT, level); }

  /// The D-weighted level, dB.
  [[nodiscard]] float DWT() const { return single(AQ_METRIC_DWT); }
  void DWT(float level) { MetricValue(AQ_METRIC_DWT, level); }

  /// The overall level, dB: the energy sum of all levels but those that are masked and not
  /// adjusted.
  [[nodiscard]] float OA() const { return single(AQ_METRIC_OA); }
  void OA(float level) { MetricValue(AQ_METRIC_OA, level); }

  /// Perceived noise level, PNdB.
  [[nodiscard]] float PNL() const { return single(AQ_METRIC_PNL); }
  void PNL(float level) { MetricValue(AQ_METRIC_PNL, level); }

  /// Tone-corrected perceived noise level, TPNdB.
  [[nodiscard]] float PNLT() const { return single(AQ_METRIC_PNLT); }
  void PNLT(float level) { MetricValue(AQ_METRIC_PNLT, level); }

  /// Tone correction, dB, and the number of the band that caused it.
  [[nodiscard]] float TONECOR() const { return single(AQ_METRIC_TONECOR); }
  void TONECOR(float correction) { MetricValue(AQ_METRIC_TONECOR, correction); }
  [[nodiscard]] float TONEBND() const { return single(AQ_METRIC_TONEBND); }
  void TONEBND(float band) { MetricValue(AQ_METRIC_TONEBND, band); }

  /// The last good band, from 28 to the highest band minus 1; 0 when no band from 29 up is masked,
  /// 9999 when bands 28 and 29 are both masked.
  [[nodiscard]] float LGB() const { return single(AQ_METRIC_LGB); }
  void LGB(float band) { MetricValue(AQ_METRIC_LGB, band); }

  /// The role of this record in the EPNL integration.
  [[nodiscard]] AQ_METRIC_INTEG_VALUE INTEG() const {
    return static_cast<AQ_METRIC_INTEG_VALUE>(MetricValue(AQ_METRIC_INTEG).toInt32());
  }
  void INTEG(AQ_METRIC_INTEG_VALUE flags) { MetricValue(AQ_METRIC_INTEG, flags); }

  /// Any metric by its type. Setting narrows types 2 to 9 to single precision and type 10 to a
  /// 32-bit integer, and throws `TypeMismatch` or `Overflow` for a value that does not convert.
  [[nodiscard]] Variant MetricValue(AQ_METRIC_TYPE aqMetric) const;
  void MetricValue(AQ_METRIC_TYPE aqMetric, const Variant& value);

  /// Whether a metric is set; a removed one is not.
  [[nodiscard]] bool contains(AQ_METRIC_TYPE aqMetric) const;
  void remove(AQ_METRIC_TYPE aqMetric);

 private:
  [[nodiscard]] float single(AQ_METRIC_TYPE metric) const { return MetricValue(metric).toSingle(); }

  // By type from `AQ_METRIC_CWT` up; stored in place, since most objects hold all of them.
  static constexpr std::size_t kSingles = AQ_METRIC_LGB - AQ_METRIC_CWT + 1;
  using Others = std::vector<std::pair<AQ_METRIC_TYPE, Variant>>;

  std::bitset<AQ_METRIC_INTEG + 1> set_;  // by type
  std::array<float, kSingles> singles_{};
  std::int32_t flags_ = 0;
  Variant awt_;
  LazyPart<Others> others_;  // values of types that are not metrics
};

}  // namespace aq
