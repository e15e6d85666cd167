#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

#include "aq/masking/mask_row.h"
#include "aq/spectral/spectrum.h"

namespace aq {

/// The levels of one record that count, by band: invalid levels do not, nor do levels that are
/// masked but not adjusted. Reuses its memory for the next record.
class CountedLevels {
 public:
  CountedLevels() = default;
  CountedLevels(const CountedLevels&) = delete;
  CountedLevels& operator=(const CountedLevels&) = delete;
  CountedLevels(const AQ_Spectrum& spectrum, const AQ_MaskRow* masks) { take(spectrum, masks); }

  /// Takes the levels of a record. They must not change while this object is used, since it may
  /// keep a view of them. Throws only if memory runs out.
  void take(const AQ_Spectrum& spectrum, const AQ_MaskRow* masks);

  /// The band of the first level, and the band after the last one.
  [[nodiscard]] std::int32_t low() const { return low_; }
  [[nodiscard]] std::int32_t end() const { return low_ + static_cast<std::int32_t>(size()); }

  /// The level of any band; NaN if the band has none that counts.
  [[nodiscard]] double level(std::int32_t band) const;

  /// Whether the levels are kept as codes.
  [[nodiscard]] bool isCoded() const { return !codes_.empty(); }
  /// Whether all levels have codes that are in `LevelTable`, in which case every level counts.
  [[nodiscard]] bool areInTable() const { return areInTable_; }
  /// The codes of the bands from `first` to `last`, or to the last level if that is lower;
  /// `kInvalidCode` for a level that does not count. Requires `isCoded` and a `first` of `low` or
  /// more.
  [[nodiscard]] std::span<const LevelCode> codes(std::int32_t first, std::int32_t last) const {
    const std::int32_t bands = std::min(last + 1, end()) - first;
    return bands > 0 ? codes_.subspan(at(first), static_cast<std::size_t>(bands))
                     : std::span<const LevelCode>{};
  }

  /// How many of the bands from `first` to `last` have a level that counts.
  [[nodiscard]] std::int16_t count(std::int32_t first, std::int32_t last) const;
  /// The number of consecutive bands, from `first` to at most `last`, that have a level that
  /// counts.
  [[nodiscard]] std::int16_t countRun(std::int32_t first, std::int32_t last) const;

 private:
  [[nodiscard]] std::size_t at(std::int32_t band) const {
    return static_cast<std::size_t>(band - low_);
  }
  [[nodiscard]] std::size_t size() const { return isCoded() ? codes_.size() : levels_.size(); }
  [[nodiscard]] bool counts(std::int32_t band) const;
  void takeEach(const AQ_Spectrum& spectrum);
  void mask(const AQ_MaskRow& masks);

  std::int32_t low_ = 0;
  bool areInTable_ = false;
  std::span<const LevelCode> codes_;  // the spectrum's, or `maskedCodes_`
  std::vector<LevelCode> maskedCodes_;
  std::vector<double> levels_;  // used unless the levels are kept as codes
};

}  // namespace aq
