#pragma once

#include <cstddef>
#include <cstdint>
#include <map>
#include <optional>
#include <span>

#include "aq/core/export.h"
#include "aq/core/variant.h"
#include "aq/detail/band_block.h"
#include "aq/detail/inline_vector.h"
#include "aq/detail/lazy_part.h"
#include "aq/text/level_code.h"

namespace aq {

/// The levels of a spectrum in one block, by band. Each level keeps its type and value. Doubles
/// without gaps are stored as one number per band or, if each has a `LevelCode`, as nearly all in
/// files do, as one code per band.
class AQ_API BandLevels {
 public:
  /// The level of `band`; nothing if it has none.
  [[nodiscard]] std::optional<Variant> find(std::int16_t band) const;

  [[nodiscard]] bool contains(std::int16_t band) const;

  // The block of all levels: its lowest band, and how many bands it has.
  [[nodiscard]] std::int16_t first() const {
    return doubles_ ? doubles_->numbers.first() : codes_.first();
  }
  [[nodiscard]] std::size_t size() const {
    return doubles_ ? doubles_->numbers.size() : codes_.size();
  }

  void store(std::int16_t band, const Variant& level);

  /// Replaces all levels with one block of doubles, from band `low` up.
  void assign(std::int16_t low, std::span<const double> levels);
  void assign(std::int16_t low, std::span<const LevelCode> codes);

  // All levels from the lowest band up: `codes` if they are stored as codes, `plain` if they are
  // stored as doubles without gaps. Empty otherwise.
  [[nodiscard]] std::span<const LevelCode> codes() const { return codes_.all(); }
  [[nodiscard]] std::span<const double> plain() const;

  /// Like `plain`, but with numbers of other types converted to doubles; nothing for codes.
  [[nodiscard]] std::span<const double> numbers() const;

 private:
  enum class Kind : std::uint8_t { Missing, Int16, Int32, Single, Double, Other };
  struct Mixed {
    BandBlock<Kind> kinds;
    std::map<std::int16_t, Variant> others;  // values that are not numbers
  };
  struct Doubles {
    BandBlock<double> numbers;
    LazyPart<Mixed> mixed;
  };

  [[nodiscard]] static Kind kindOf(const Variant& level);
  [[nodiscard]] bool storeCode(std::int16_t band, const Variant& level);
  void assignDoubles(std::int16_t low, std::span<const double> levels);
  [[nodiscard]] Doubles& asDoubles();
  static void startMixed(Doubles& doubles);

  static constexpr std::size_t kInline = 34;  // bands from 10 Hz to 20 kHz
  using CodeCount = std::uint16_t;
  static constexpr std::size_t kMostCodes = UINT16_MAX;  // beyond it, levels are stored as doubles

  BandBlock<LevelCode, InlineVector<LevelCode, kInline, CodeCount>> codes_;
  LazyPart<Doubles> doubles_;  // used instead of the codes
};

}  // namespace aq
