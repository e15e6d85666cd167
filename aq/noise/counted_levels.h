#pragma once

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <limits>
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

  /// 10^(0.1 L) of each level, which may be infinite beyond thousands of decibels.
  [[nodiscard]] std::span<const double> energies() const { return energies_; }

  /// The levels, or their codes, of so many bands from `first` up; what does not count is NaN, or
  /// `kInvalidCode`.
  template <std::size_t kCount>
  [[nodiscard]] std::array<double, kCount> levelsFrom(std::int32_t first) const {
    return part<kCount, double>(levels_, first, std::numeric_limits<double>::quiet_NaN());
  }
  template <std::size_t kCount>
  [[nodiscard]] std::array<LevelCode, kCount> codesFrom(std::int32_t first) const {
    return part<kCount, LevelCode>(codes_, first, kInvalidCode);
  }
  /// Whether all levels have codes.
  [[nodiscard]] bool hasCodes() const { return !codes_.empty(); }

 private:
  void takeCodes();
  void takeEach(const AQ_Spectrum& spectrum);
  void mask(const AQ_MaskRow& masks);
  void takeOut(std::size_t place);

  template <std::size_t kCount, class Cell>
  [[nodiscard]] std::array<Cell, kCount> part(const std::vector<Cell>& cells, std::int32_t first,
                                              Cell none) const {
    std::array<Cell, kCount> taken;
    taken.fill(none);
    const auto size = static_cast<std::int32_t>(cells.size());
    const std::int32_t begin = std::max(first, low_);
    const std::int32_t end = std::min(first + static_cast<std::int32_t>(kCount), low_ + size);
    if (begin < end) {
      std::copy(cells.begin() + (begin - low_), cells.begin() + (end - low_),
                taken.begin() + (begin - first));
    }
    return taken;
  }

  std::int32_t low_ = 0;
  std::vector<LevelCode> codes_;  // empty when a level has none
  std::vector<double> levels_;
  std::vector<double> energies_;
};

}  // namespace aq
