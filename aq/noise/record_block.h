#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

#include "aq/masking/mask_row.h"
#include "aq/noise/counted_levels.h"
#include "aq/noise/weightings.h"
#include "aq/spectral/spectrum.h"

namespace aq {

/// One number for each record of a block.
inline constexpr std::size_t kBlockRecords = 8;
using BlockRow = std::array<double, kBlockRecords>;

/// The levels of a few records that count, with their energies: by band, the levels of one band
/// contiguous, so that one instruction handles several records. Bands are those of the weightings;
/// unused places have no level.
class RecordBlock {
 public:
  struct Record {
    const AQ_Spectrum* spectrum = nullptr;
    const AQ_MaskRow* masks = nullptr;  // may be null
  };

  RecordBlock() = default;
  RecordBlock(const AQ_Spectrum& spectrum, const AQ_MaskRow* masks) {
    take(std::array{Record{&spectrum, masks}});
  }

  /// Takes up to `kBlockRecords` records in place of those that it had. Throws only when memory
  /// runs out.
  void take(std::span<const Record> records);

  [[nodiscard]] std::size_t size() const { return size_; }
  [[nodiscard]] const CountedLevels& record(std::size_t i) const { return records_[i]; }
  /// The records with a level that has no code.
  [[nodiscard]] std::span<const std::size_t> uncoded() const { return uncoded_; }

  /// NaN for a level that does not count.
  [[nodiscard]] const BlockRow& levels(std::int32_t band) const { return levels_[rowOf(band)]; }

  /// 10^(0.1 L) of each level that counts, infinite for levels of thousands of decibels; otherwise
  /// 0.
  [[nodiscard]] const BlockRow& energies(std::int32_t band) const { return energies_[rowOf(band)]; }
  /// The energies of the bands without a row.
  [[nodiscard]] const BlockRow& otherEnergies() const { return otherEnergies_; }

  using Codes = std::array<LevelCode, kBlockRecords>;
  /// `kInvalidCode` for a level that does not count, and for all of an uncoded record.
  [[nodiscard]] const Codes& codes(std::int32_t band) const { return codes_[rowOf(band)]; }

 private:
  static constexpr std::size_t kRows = std::tuple_size_v<Weighting>;
  static std::size_t rowOf(std::int32_t band) {
    return static_cast<std::size_t>(band - kFirstWeightedBand);
  }

  void takeCodes(std::size_t place);
  void takeLevels(std::size_t place);
  void addOtherEnergies(std::size_t place);
  void decodeRows();
  void decode(std::size_t row);

  std::size_t size_ = 0;
  std::array<CountedLevels, kBlockRecords> records_;
  std::vector<std::size_t> uncoded_;
  std::array<Codes, kRows> codes_{};
  std::array<BlockRow, kRows> levels_{};
  std::array<BlockRow, kRows> energies_{};
  BlockRow otherEnergies_{};
};

}  // namespace aq
