#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>
#include <utility>

#include "aq/core/export.h"
#include "aq/detail/band_block.h"
#include "aq/detail/inline_vector.h"
#include "aq/detail/lazy_part.h"
#include "aq/detail/number_range.h"
#include "aq/detail/number_walk.h"
#include "aq/masking/mask.h"
#include "aq/masking/mask_code.h"

namespace aq {

/// The masking decisions of one record, by band, and its last good band. Masks are shared with the
/// caller, not copied.
class AQ_API AQ_MaskRow {
 public:
  /// A deep copy. Bands of the range without a mask get a default one, here and in the copy.
  [[nodiscard]] std::shared_ptr<AQ_MaskRow> Copy();

  /// The mask of a band; a band without one gets a default mask, and the range widens.
  std::shared_ptr<AQ_Mask> Mask(std::int16_t nBand);

  /// Stores a mask for a band that has none. For a band that has one it only removes that: hosts
  /// rely on it. To change a decision, change the mask that the getter returns.
  void Mask(std::int16_t nBand, std::shared_ptr<AQ_Mask> mask);

  /// The highest and lowest band ever stored or fetched; -1 and 9999 when there is none.
  [[nodiscard]] std::int16_t HighBand() const { return bands_.high; }
  [[nodiscard]] std::int16_t LowBand() const { return bands_.low; }

  /// Whether the bands of `spectrum`, which is asked for `LowBand` and `HighBand`, lie inside ours.
  template <class Banded>
  [[nodiscard]] bool Encompasses(const Banded& spectrum) const {
    return bands_.encompasses(spectrum);
  }

  /// The last good band: 0 when no band from 29 up is masked, 9999 when bands 28 and 29 both are.
  [[nodiscard]] std::int16_t LGB() const { return lastGoodBand_; }
  void LGB(std::int16_t band) { lastGoodBand_ = band; }

  // The bands that have a mask, as pairs of band and mask by value, ascending. Storing or fetching
  // one ends a walk. Neither a walk nor `contains` gives a band a mask.
  [[nodiscard]] NumberWalk<AQ_MaskRow> begin() const { return {this, codes_.first(), afterLast()}; }
  [[nodiscard]] NumberWalk<AQ_MaskRow> end() const { return {this, afterLast(), afterLast()}; }
  [[nodiscard]] bool contains(std::int32_t band) const;

  /// The decision of a band by value: as the getter, without making an object for it.
  [[nodiscard]] AQ_Mask decision(std::int16_t band);

  /// As the setter with a new mask of these values.
  void store(std::int16_t band, const AQ_Mask& decision);

  /// Replaces all masks by those of these codes, of consecutive bands from `low` up.
  void assign(std::int16_t low, std::span<const MaskCode> codes);

  /// The masks from `LowBand` to `HighBand`, as if each was fetched; empty when one has no code or
  /// was handed out.
  [[nodiscard]] std::span<const MaskCode> fetchedCodes();

 private:
  friend NumberWalk<AQ_MaskRow>;
  [[nodiscard]] std::pair<std::int16_t, AQ_Mask> entry(std::int16_t band) const {
    return {band, held(band)};
  }
  [[nodiscard]] std::int32_t afterLast() const {
    return codes_.first() + static_cast<std::int32_t>(codes_.size());
  }
  [[nodiscard]] AQ_Mask held(std::int16_t band) const;
  [[nodiscard]] MaskCode& fetch(std::int16_t band);
  [[nodiscard]] MaskCode* place(std::int16_t band);

  static constexpr std::size_t kInline = 34;  // bands from 10 Hz to 20 kHz

  BandBlock<MaskCode, InlineVector<MaskCode, kInline>> codes_;
  // A decision stays a code until somebody asks for its object; then the object counts.
  LazyPart<BandBlock<std::shared_ptr<AQ_Mask>>> objects_;
  NumberRange bands_;
  std::int16_t lastGoodBand_ = 0;
};

}  // namespace aq
