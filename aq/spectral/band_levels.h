#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <span>

#include "aq/core/band_block.h"
#include "aq/core/export.h"
#include "aq/core/on_demand.h"
#include "aq/core/variant.h"

namespace aq {

/// The levels of a spectrum in one block by band. Each keeps its own type: as long as all are
/// doubles without a gap, no more than the doubles is kept.
class AQ_API BandLevels {
 public:
  /// The level of `band`; nothing when it has none.
  [[nodiscard]] std::optional<Variant> find(std::int16_t band) const;

  [[nodiscard]] bool contains(std::int16_t band) const;

  void store(std::int16_t band, const Variant& level);

  /// Replaces all by one block of doubles, from band `low` up.
  void assign(std::int16_t low, std::span<const double> levels);

  /// All levels, from the lowest band up, when they are doubles without a gap; else nothing.
  [[nodiscard]] std::span<const double> plain() const;

 private:
  enum class Kind : std::uint8_t { Missing, Int16, Int32, Single, Double, Other };
  struct Mixed {
    BandBlock<Kind> kinds;
    std::map<std::int16_t, Variant> others;  // what is no number
  };

  static Kind kindOf(const Variant& level);
  [[nodiscard]] bool staysPlain(std::int16_t band, Kind kind) const;
  void startMixed();

  BandBlock<double> numbers_;
  OnDemand<Mixed> mixed_;
};

}  // namespace aq
