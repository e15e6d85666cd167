#pragma once

#include <cstdint>
#include <memory>
#include <span>
#include <utility>
#include <vector>

#include "aq/core/export.h"
#include "aq/core/variant.h"
#include "aq/detail/lazy_time.h"
#include "aq/detail/number_range.h"
#include "aq/detail/number_walk.h"
#include "aq/detail/pointers.h"
#include "aq/spectral/band_levels.h"
#include "aq/spectral/metric.h"
#include "aq/text/level_code.h"

namespace aq {

/// One measured one-third-octave spectrum: a level for each band, the time of the measurement, an
/// overall level and the noise metrics. Band n is centred at 10^(n/10) Hz (band 30 is 1 kHz). A
/// level is in decibels re 20 uPa, 9999 where it is not valid; any value is kept unchanged and
/// never interpreted.
class AQ_API AQ_Spectrum {
 public:
  /// A deep copy. Throws `InvalidArgument` if a band between the lowest and the highest has no
  /// level.
  [[nodiscard]] std::shared_ptr<AQ_Spectrum> Copy();

  /// The level of a band in dB. Reading throws `InvalidArgument` if it has none.
  [[nodiscard]] Variant SPL(std::int16_t nBand) const;
  void SPL(std::int16_t nBand, const Variant& level);

  /// The lowest and highest band ever stored; 9999 and -1 if there is none.
  [[nodiscard]] std::int16_t LowBand() const { return bands_.low; }
  [[nodiscard]] std::int16_t HighBand() const { return bands_.high; }

  /// Whether the bands of `spectrum`, from its `LowBand` to its `HighBand`, lie inside this range.
  template <class Banded>
  [[nodiscard]] bool Encompasses(const Banded& spectrum) const {
    return bands_.encompasses(spectrum);
  }

  /// An overall level for the caller's own use, dB; initially 0. The library only copies it; the
  /// overall level that `setMetrics` computes is `Metric()->OA()`.
  [[nodiscard]] double Level() const { return extras_ ? extras_->level : 0; }
  void Level(double level) { extras_.orCreate().level = level; }

  /// Created on first read; setting shares the caller's object.
  std::shared_ptr<AQ_Time> Time() { return time_.object(); }
  void Time(std::shared_ptr<AQ_Time> time) { time_.share(std::move(time)); }

  /// Created on first read; setting shares the caller's object.
  std::shared_ptr<AQ_Metric> Metric();
  void Metric(std::shared_ptr<AQ_Metric> metric) {
    extras_.orCreate().metric = std::move(metric);
    copied_ = false;
  }

  /// A loop yields the bands that have a level, ascending, as pairs of band and level. Storing a
  /// level invalidates iterators.
  [[nodiscard]] NumberWalk<AQ_Spectrum> begin() const {
    return {this, levels_.first(), afterLast()};
  }
  [[nodiscard]] NumberWalk<AQ_Spectrum> end() const { return {this, afterLast(), afterLast()}; }
  [[nodiscard]] bool contains(std::int32_t band) const {
    return std::in_range<std::int16_t>(band) && levels_.contains(static_cast<std::int16_t>(band));
  }

  /// Whether there is a metrics object already; lets callers avoid creating one.
  [[nodiscard]] bool hasMetric() const { return extras_ && extras_->metric; }

  /// The time by value; creates no object.
  [[nodiscard]] AQ_Time timeValue() const { return time_.value(); }
  [[nodiscard]] LazyTime& lazyTime() { return time_; }

  /// Replaces all levels with those of consecutive bands from `low` up.
  void assignLevels(std::int16_t low, std::span<const double> levels);
  void assignCodes(std::int16_t low, std::span<const LevelCode> codes);

  /// All levels from `LowBand` to `HighBand`, if `levelCodes` or `levelDoubles` has them; otherwise
  /// none.
  [[nodiscard]] std::vector<double> plainLevels() const;

  // The levels from `LowBand` to `HighBand` as they are stored: in `levelCodes` as codes, or in
  // `levelDoubles` as doubles. Both are empty if there are, or were, gaps or levels of other types.
  [[nodiscard]] std::span<const LevelCode> levelCodes() const;
  [[nodiscard]] std::span<const double> levelDoubles() const;

  /// Like `levelDoubles`, but numbers of other types are converted.
  [[nodiscard]] std::span<const double> levelNumbers() const;

 private:
  friend NumberWalk<AQ_Spectrum>;
  [[nodiscard]] std::pair<std::int16_t, Variant> entry(std::int16_t band) const {
    return {band, SPL(band)};
  }
  [[nodiscard]] std::int32_t afterLast() const {
    return levels_.first() + static_cast<std::int32_t>(levels_.size());
  }

  struct Extras {
    double level = 0;
    std::shared_ptr<AQ_Metric> metric;
  };

  // In this order, members fill the padding of the time, which saves memory in every spectrum.
  BandLevels levels_;
  [[no_unique_address]] LazyTime time_;
  bool copied_ = false;  // whether a metrics object created later has every metric set to 0
  NumberRange bands_;
  LazyPart<Extras> extras_;  // unused in most files
};

}  // namespace aq
