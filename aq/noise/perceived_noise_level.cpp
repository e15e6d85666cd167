#include "aq/noise/perceived_noise_level.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <map>
#include <numeric>

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
  return 0;  // also for a level that does not count
}

/// The noys of levels that have codes, by band. Bands with the same slope share its powers.
class NoyTables {
 public:
  NoyTables() {
    const Piece silence{0, 0, &powers_.try_emplace(0, 0).first->second};
    for (std::size_t i = 0; i < bands_.size(); ++i) {
      const NoyBand& band = kNoyBands[i];
      bands_[i] = {piece(band.splA, 1, band.mC, band.splC), piece(band.splB, 1, band.mB, band.splB),
                   piece(band.splE, 0.3, band.mE, band.splE),
                   piece(band.splD, 0.1, band.mD, band.splD), silence};
    }
  }

  /// Of the band at a place of `kNoyBands`.
  [[nodiscard]] double noys(std::size_t band, LevelCode code) const {
    const Band& pieces = bands_[band];
    std::size_t at = 0;  // counted, as no branch could be guessed
    for (std::size_t i = 0; i < kPieces; ++i) at += static_cast<std::size_t>(code < pieces[i].from);
    return pieces[at].factor * pieces[at].powers->of(code);
  }

 private:
  struct Piece {
    int from = 0;  // the lowest code
    double factor = 0;
    const PowersOfLevels* powers = nullptr;
  };

  Piece piece(double begin, double noysThere, double slope, double zero) {
    constexpr int kNever = 32768;  // above all codes
    const int from = std::isfinite(begin) ? static_cast<int>(std::lround(begin * 100)) : kNever;
    const PowersOfLevels& powers = powers_.try_emplace(slope, slope).first->second;
    return {from, noysThere * powerOfTen(-slope * zero), &powers};
  }

  static constexpr std::size_t kPieces = 4;
  using Band = std::array<Piece, kPieces + 1>;  // from the loudest down; the last is silence

  std::map<double, PowersOfLevels> powers_;  // by slope
  std::array<Band, kNoyBands.size()> bands_{};
};

using Noys = std::array<double, kNoyBands.size()>;

Noys noysOf(const CountedLevels& record) {
  Noys noys{};
  if (record.hasCodes()) {
    const auto codes = record.codesFrom<kNoyBands.size()>(kFirstNoyBand);
    static const NoyTables tables;
    for (std::size_t i = 0; i < noys.size(); ++i) noys[i] = tables.noys(i, codes[i]);
  } else {
    const auto levels = record.levelsFrom<kNoyBands.size()>(kFirstNoyBand);
    for (std::size_t i = 0; i < noys.size(); ++i) noys[i] = noysOf(kNoyBands[i], levels[i]);
  }
  return noys;
}

}  // namespace

double perceivedNoiseLevelOf(const CountedLevels& record) {
  const Noys noys = noysOf(record);
  const double highest = *std::max_element(noys.begin(), noys.end());
  const double total = 0.85 * highest + 0.15 * std::accumulate(noys.begin(), noys.end(), 0.0);
  return total > 0 ? 40 + 10 * std::log2(total) : 0;
}

double perceivedNoiseLevel(const AQ_Spectrum& spectrum, const AQ_MaskRow* masks) {
  const double level = perceivedNoiseLevelOf(CountedLevels(spectrum, masks));
  if (std::isfinite(level)) return level;
  throw Error(ErrorCode::Overflow, "the levels are too high for a perceived noise level");
}

}  // namespace aq
