#pragma once

#include <cstdint>
#include <span>
#include <vector>

#include "aq/masking/mask_row.h"
#include "aq/spectral/spectrum.h"

namespace aq {

/// The levels of one record that count, by band. Taking the next record reuses the memory.
class CountedLevels {
 public:
  /// Throws only when memory runs out.
  void take(const AQ_Spectrum& spectrum, const AQ_MaskRow* masks);

  /// The band of the first level, and the band after the last one.
  [[nodiscard]] std::int32_t low() const { return low_; }
  [[nodiscard]] std::int32_t end() const { return low_ + static_cast<std::int32_t>(size()); }

  /// The level of a band from `low` to before `end`; NaN for one that does not count.
  [[nodiscard]] double level(std::int32_t band) const;

  /// All levels as codes, `kInvalidCode` for one that does not count; empty if a level has no code.
  [[nodiscard]] std::span<const LevelCode> codes() const { return codes_; }

 private:
  [[nodiscard]] std::size_t size() const { return codes_.empty() ? levels_.size() : codes_.size(); }
  void takeEach(const AQ_Spectrum& spectrum);
  void mask(const AQ_MaskRow& masks);

  std::int32_t low_ = 0;
  std::vector<LevelCode> codes_;
  std::vector<double> levels_;  // instead of the codes
};

}  // namespace aq
