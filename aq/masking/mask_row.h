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
  /// A deep copy. Creates a default mask, here and in the copy, in each band of the range that has
  /// none.
  [[nodiscard]] std::shared_ptr<AQ_MaskRow> Copy();

  /// The mask of a band. Creates a default mask if the band has none, which may widen the range.
  std::shared_ptr<AQ_Mask> Mask(std::int16_t nBand);

  /// Stores a mask for a band that has none. If the band has one, only removes it, as hosts expect.
  /// To change a decision, change the mask that the getter returns.
  void Mask(std::int16_t nBand, std::shared_ptr<AQ_Mask> mask);

  /// The highest and lowest band ever stored or fetched; -1 and 9999 if there is none.
  [[nodiscard]] std::int16_t HighBand() const { return bands_.high; }
  [[nodiscard]] std::int16_t LowBand() const { return bands_.low; }

  /// Whether the bands of `spectrum`, from its `LowBand` to its `HighBand`, lie inside this range.
  template <class Banded>
  [[nodiscard]] bool Encompasses(const Banded& spectrum) const {
    return bands_.encompasses(spectrum);
  }

  /// The last good band as last set: from 28 to the highest band minus 1; 0 when no band from 29 up
  /// is masked, 9999 when bands 28 and 29 are both masked. 0 until set.
  [[nodiscard]] std::int16_t LGB() const { return lastGoodBand_; }
  void LGB(std::int16_t band) { lastGoodBand_ = band; }

  /// A loop yields the bands that have a mask, in ascending order, as pairs of band number and a
  /// copy of the mask. Storing or fetching a mask invalidates iterators. Iterating and `contains`
  /// create no mask.
  [[nodiscard]] NumberWalk<AQ_MaskRow> begin() const { return {this, codes_.first(), afterLast()}; }
  [[nodiscard]] NumberWalk<AQ_MaskRow> end() const { return {this, afterLast(), afterLast()}; }
  [[nodiscard]] bool contains(std::int32_t band) const;

  /// The mask of a band by value. A band that has none gets a default mask, as with the getter, but
  /// no object is created for it.
  [[nodiscard]] AQ_Mask decision(std::int16_t band);

  /// Like the setter with a new mask of these values.
  void store(std::int16_t band, const AQ_Mask& decision);

  /// Replaces all masks with `count` masks of consecutive bands from `low` up. Returns their codes;
  /// the caller must set all of them before any other call.
  [[nodiscard]] std::span<MaskCode> renew(std::int16_t low, std::size_t count);

  /// The codes of the masks from `LowBand` to `HighBand`, `kNoMaskCode` where a band has no mask.
  /// Empty if the range is wider than the masks, or if the row keeps masks as objects, as it does
  /// once an object was handed out or stored.
  [[nodiscard]] std::span<const MaskCode> codes() const {
    return objects_ || !bands_.holds(codes_.size()) ? std::span<const MaskCode>() : codes_.all();
  }

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

  // A decision is kept as a code until its object is first accessed; from then on the object holds
  // it. The members after `codes_` fill its padding, which saves memory as there are many rows.
  [[no_unique_address]] BandBlock<MaskCode, InlineVector<MaskCode, kInline>> codes_;
  NumberRange bands_;
  std::int16_t lastGoodBand_ = 0;
  LazyPart<BandBlock<std::shared_ptr<AQ_Mask>>> objects_;
};

}  // namespace aq
