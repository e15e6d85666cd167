#include "aq/noise/record_block.h"

#include <algorithm>
#include <cmath>
#include <limits>

#include "aq/noise/power_of_ten.h"

namespace aq {
namespace {

constexpr double kNoLevel = std::numeric_limits<double>::quiet_NaN();

/// The energies of all level codes.
const PowersOfLevels& energyTable() {
  static const PowersOfLevels table(0.1);
  return table;
}

double energyOf(double level) { return std::isnan(level) ? 0 : powerOfTen(0.1 * level); }

std::int32_t firstRowOf(const CountedLevels& record) {
  return std::max<std::int32_t>(record.low(), kFirstWeightedBand);
}

std::int32_t afterRowsOf(const CountedLevels& record) {
  return std::min<std::int32_t>(record.end(), kLastWeightedBand + 1);
}

}  // namespace

void RecordBlock::take(std::span<const Record> records) {
  size_ = records.size();
  uncoded_.clear();
  otherEnergies_ = {};
  for (Codes& row : codes_) row.fill(kInvalidCode);
  for (std::size_t i = 0; i < size_; ++i) {
    records_[i].take(*records[i].spectrum, records[i].masks);
    takeCodes(i);
    addOtherEnergies(i);
  }
  decodeRows();
  for (const std::size_t place : uncoded_) takeLevels(place);
}

void RecordBlock::takeCodes(std::size_t place) {
  const CountedLevels& record = records_[place];
  const auto codes = record.codes();
  if (codes.empty()) {
    uncoded_.push_back(place);
    return;
  }
  const std::int32_t end = afterRowsOf(record);
  for (std::int32_t band = firstRowOf(record); band < end; ++band) {
    codes_[rowOf(band)][place] = codes[static_cast<std::size_t>(band - record.low())];
  }
}

void RecordBlock::takeLevels(std::size_t place) {
  const CountedLevels& record = records_[place];
  for (std::int32_t band = firstRowOf(record); band < afterRowsOf(record); ++band) {
    const double level = record.level(band);
    levels_[rowOf(band)][place] = level;
    energies_[rowOf(band)][place] = energyOf(level);
  }
}

void RecordBlock::addOtherEnergies(std::size_t place) {
  const CountedLevels& record = records_[place];
  const auto add = [&](std::int32_t begin, std::int32_t end) {
    for (std::int32_t band = std::max(begin, record.low()); band < end; ++band) {
      otherEnergies_[place] += energyOf(record.level(band));
    }
  };
  add(record.low(), std::min<std::int32_t>(record.end(), kFirstWeightedBand));
  add(kLastWeightedBand + 1, record.end());
}

void RecordBlock::decodeRows() {
  std::int32_t begin = kLastWeightedBand + 1;
  std::int32_t end = kFirstWeightedBand;
  for (std::size_t i = 0; i < size_; ++i) {
    begin = std::min(begin, firstRowOf(records_[i]));
    end = std::max(end, afterRowsOf(records_[i]));
  }
  for (std::int32_t band = kFirstWeightedBand; band <= kLastWeightedBand; ++band) {
    const std::size_t row = rowOf(band);
    if (band >= begin && band < end) {
      decode(row);
    } else {
      levels_[row].fill(kNoLevel);
      energies_[row].fill(0);
    }
  }
}

void RecordBlock::decode(std::size_t row) {
  constexpr double kInvalid = kInvalidCode / 100.0;
  const PowersOfLevels& table = energyTable();
  const Codes& codes = codes_[row];
  BlockRow levels;
  BlockRow energies;
  for (std::size_t i = 0; i < kBlockRecords; ++i) energies[i] = table.of(codes[i]);
  for (std::size_t i = 0; i < kBlockRecords; ++i) levels[i] = codes[i] / 100.0;
  for (std::size_t i = 0; i < kBlockRecords; ++i) {
    const double energy = energies[i];
    energies_[row][i] = levels[i] == kInvalid ? 0 : energy;
  }
  for (std::size_t i = 0; i < kBlockRecords; ++i) {
    const double level = levels[i];
    levels_[row][i] = level == kInvalid ? kNoLevel : level;
  }
}

}  // namespace aq
