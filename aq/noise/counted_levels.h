#pragma once

#include <cstdint>
#include <span>
#include <vector>

#include "aq/masking/mask_row.h"
#include "aq/spectral/spectrum.h"

namespace aq {

/// The levels of one record that count, by band, with their energies. One that does not count is
/// NaN, and its energy 0. Taking the next record uses the same memory.
class CountedLevels {
 public:
  CountedLevels() = default;
  CountedLevels(const AQ_Spectrum& spectrum, const AQ_MaskRow* masks) { take(spectrum, masks); }

  /// Throws nothing but for a lack of memory.
  void take(const AQ_Spectrum& spectrum, const AQ_MaskRow* masks);

  /// The band of the first level.
  [[nodiscard]] std::int32_t low() const { return low_; }
  [[nodiscard]] std::span<const double> levels() const { return levels_; }
  /// NaN outside the bands of the record too.
  [[nodiscard]] double level(std::int32_t band) const;

  /// 10^(0.1 L) of each level, which may be infinite beyond thousands of decibels.
  [[nodiscard]] std::span<const double> energies() const { return energies_; }

  /// How many levels of bands `from` to `to` count.
  [[nodiscard]] std::int16_t countOf(std::int32_t from, std::int32_t to) const;

 private:
  void takeCodes(std::span<const LevelCode> codes);
  void takeEach(const AQ_Spectrum& spectrum);
  void mask(const AQ_MaskRow& masks);

  std::int32_t low_ = 0;
  std::vector<double> levels_;
  std::vector<double> energies_;
};

}  // namespace aq
