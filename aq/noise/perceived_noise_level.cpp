#include "aq/noise/perceived_noise_level.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <map>

#include "aq/core/error.h"
#include "aq/noise/noy_table.h"
#include "aq/noise/power_of_ten.h"
#include "aq/noise/record_levels.h"

namespace aq {
namespace {

double noysOf(const NoyBand& band, double level) {
  if (level >= band.splA) return powerOfTen(band.mC * (level - band.splC));
  if (level >= band.splB) return powerOfTen(band.mB * (level - band.splB));
  if (level >= band.splE) return 0.3 * powerOfTen(band.mE * (level - band.splE));
  if (level >= band.splD) return 0.1 * powerOfTen(band.mD * (level - band.splD));
  return 0;  // also for NaN, a level that does not count
}

/// The noys of levels that have codes, by band. Bands with the same slope share a table of powers.
class NoyTables {
 public:
  NoyTables() {
    const Piece silence{0, 0, &powers_.try_emplace(0, 0).first->second};
    for (std::size_t i = 0; i < bands_.size(); ++i) {
      const NoyBand& band = kNoyBands[i];
      const Piece from = piece(band.splB, 1, band.mB, band.splB);
      const bool goesOn = !std::isfinite(band.splA);
      bands_[i] = {goesOn ? from : piece(band.splA, 1, band.mC, band.splC), from,
                   piece(band.splE, 0.3, band.mE, band.splE),
                   piece(band.splD, 0.1, band.mD, band.splD), silence};
    }
  }

  /// Of the band at an index of `kNoyBands`.
  [[nodiscard]] BlockRow noys(std::size_t band, const RecordBlock::Codes& codes) const {
    const Band& pieces = bands_[band];
    RecordBlock::Codes at{};  // counted, since branches would be unpredictable
    for (std::size_t i = 0; i < kPieces; ++i) {
      const LevelCode from = pieces[i].from;
      for (std::size_t r = 0; r < kBlockRecords; ++r) {
        at[r] = static_cast<LevelCode>(at[r] + (codes[r] < from ? 1 : 0));
      }
    }
    BlockRow noys;
    for (std::size_t r = 0; r < kBlockRecords; ++r) {
      const Piece& piece = pieces[static_cast<std::size_t>(at[r])];
      noys[r] = piece.factor * piece.powers->of(codes[r]);
    }
    return noys;
  }

 private:
  struct Piece {
    LevelCode from = 0;  // the lowest code
    double factor = 0;
    const PowersOfLevels* powers = nullptr;
  };

  Piece piece(double begin, double noysThere, double slope, double zero) {
    const PowersOfLevels& powers = powers_.try_emplace(slope, slope).first->second;
    return {codeOf(begin).value(), noysThere * powerOfTen(-slope * zero), &powers};
  }

  static constexpr std::size_t kPieces = 4;
  using Band = std::array<Piece, kPieces + 1>;  // from the loudest down; the last one gives 0 noys

  std::map<double, PowersOfLevels> powers_;  // by slope
  std::array<Band, kNoyBands.size()> bands_{};
};

BlockRow noysOf(std::size_t place, const RecordBlock& block) {
  static const NoyTables tables;
  const auto band = kFirstNoyBand + static_cast<std::int32_t>(place);
  BlockRow noys = tables.noys(place, block.codes(band));
  for (const std::size_t r : block.uncoded()) {
    noys[r] = noysOf(kNoyBands[place], block.levels(band)[r]);
  }
  return noys;
}

}  // namespace

BlockRow perceivedNoiseLevelsOf(const RecordBlock& block) {
  BlockRow highest{};
  BlockRow sum{};
  for (std::size_t i = 0; i < kNoyBands.size(); ++i) {
    const BlockRow noys = noysOf(i, block);
    for (std::size_t r = 0; r < kBlockRecords; ++r) {
      const double before = highest[r];
      highest[r] = noys[r] > before ? noys[r] : before;
      sum[r] += noys[r];
    }
  }
  BlockRow levels{};
  for (std::size_t r = 0; r < block.size(); ++r) {
    const double total = 0.85 * highest[r] + 0.15 * sum[r];
    levels[r] = total > 0 ? 40 + 10 * std::log2(total) : 0;
  }
  return levels;
}

double perceivedNoiseLevel(const AQ_Spectrum& spectrum, const AQ_MaskRow* masks) {
  const double level = perceivedNoiseLevelsOf(RecordBlock(spectrum, masks))[0];
  if (std::isfinite(level)) return level;
  throw Error(ErrorCode::Overflow, "the levels are too high for a perceived noise level");
}

}  // namespace aq
