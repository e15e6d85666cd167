#include "tools/aqdata/sheet.h"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>

namespace aqdata {
namespace {

/// The seconds of a time as a number; as text, most times of day keep only hundredths.
double secondsOf(const aq::AQ_Time& time) { return tidySeconds(time.TODseconds()); }

/// Adds a row: its number, the cells of the other columns, and its value in each of the sheet's
/// bands.
void addRow(Sheet& sheet, std::int32_t number, std::vector<Json> cells,
            std::vector<Json> bands = {}) {
  cells.insert(cells.begin(), number);
  sheet.rows.push_back({number, std::move(cells), std::move(bands)});
}

void setBands(Sheet& sheet, std::int16_t low, std::int16_t high) {
  sheet.low = low;
  sheet.high = high;
}

std::vector<Json> levelsOf(const aq::AQ_Spectrum& spectrum) {
  std::vector<Json> levels;
  for (const double level : spectrum.plainLevels()) levels.emplace_back(level);
  return levels;
}

/// The levels of a spectrum from band `low` to `high`, with null for a missing level.
std::vector<Json> levelsOf(const aq::AQ_Spectrum& spectrum, std::int16_t low, std::int16_t high) {
  std::vector<Json> levels = levelsOf(spectrum);
  const bool whole = spectrum.LowBand() == low && spectrum.HighBand() == high;
  if (whole && !levels.empty()) return levels;
  levels.clear();
  for (std::int32_t band = low; band <= high; ++band) {
    const bool has = spectrum.contains(band);
    levels.push_back(has ? Json(spectrum.SPL(static_cast<std::int16_t>(band)).toDouble()) : Json());
  }
  return levels;
}

Sheet sheetFrom(const History& read) {
  Sheet sheet{.columns = {"record", "time", "time_s", "relative_s"}, .ofBand = "level_db"};
  const auto [low, high] = bandsOf(*read.model);
  setBands(sheet, low, high);
  for (const auto& [record, spectrum] : *read.model) {
    const aq::AQ_Time time = spectrum->timeValue();
    const double relative = tidy(static_cast<float>(time.RelSeconds()));
    addRow(sheet, record, {timeText(time), secondsOf(time), relative},
           levelsOf(*spectrum, low, high));
  }
  return sheet;
}

Sheet sheetFrom(const SpectrumRecord& read) {
  Sheet sheet{.columns = {"record"}, .ofBand = "level_db"};
  setBands(sheet, read.model->LowBand(), read.model->HighBand());
  addRow(sheet, 1, {}, levelsOf(*read.model));
  return sheet;
}

Sheet sheetFrom(const MaskingMap& read) {
  Sheet sheet{.columns = {"record", "last_good_band"}, .ofBand = "mask"};
  setBands(sheet, read.header->iBandLow, read.header->iBandHigh);
  for (const auto& [record, row] : *read.model) {
    std::vector<Json> masks;
    for (std::int32_t band = sheet.low; band <= sheet.high; ++band) {
      masks.emplace_back(row->decision(static_cast<std::int16_t>(band)).MaskString());
    }
    addRow(sheet, record, {row->LGB()}, std::move(masks));
  }
  return sheet;
}

template <class Header>
Sheet sheetFrom(const Held<Header, aq::AQ_PositionTimeHistory>& read) {
  const aq::AQ_PositionTimeHistory& history = *read.model;
  Sheet sheet{.columns = {"position", "time", "time_s", "x", "y", "z"}};
  for (const auto& [place, position] : history) {
    const aq::AQ_Time time = position->lazyTime().value();
    addRow(sheet, place,
           {timeText(time), secondsOf(time), position->X(), position->Y(), position->Z()});
  }
  return sheet;
}

template <class Header>
Sheet sheetFrom(const Held<Header, aq::AQ_GeometryTimeHistory>& read) {
  Sheet sheet{.columns = {"record", "time", "time_s", "emission_time", "emission_time_s",
                          "propagation_s", "x", "y", "z", "slant_range", "theta", "beta"}};
  for (const auto& [record, point] : *read.model) {
    addRow(sheet, record,
           {timeText(*point->Tm()), secondsOf(*point->Tm()), timeText(*point->Te()),
            secondsOf(*point->Te()), point->Tprope, point->Pe()->X(), point->Pe()->Y(),
            point->Pe()->Z(), point->SRe, tidy(point->THETAe), tidy(point->BETAe)});
  }
  return sheet;
}

template <class Header>
Sheet sheetFrom(const Held<Header, aq::AQ_Microphone>& read) {
  Sheet sheet{.columns = {"microphone", "x", "y", "z", "height"}};
  const aq::AQ_Microphone& at = *read.model;
  addRow(sheet, 1, {at.X, at.Y, at.Z, at.Height});
  return sheet;
}

[[noreturn]] void failEmpty(const std::string& file, const std::string& ofWhat, Range range) {
  throw Failure(range.first == range.last
                    ? fmt::format("{}: has no {} {}", aq::escaped(file), ofWhat, range.first)
                    : fmt::format("{}: has no {}s from {} to {}", aq::escaped(file), ofWhat,
                                  range.first, range.last));
}

Sheet sheetFrom(const Parameters&) { return {}; }  // all the content is in the header

}  // namespace

void Sheet::keepRows(Range range, const std::string& file) {
  std::erase_if(
      rows, [&](const Row& row) { return row.number < range.first || row.number > range.last; });
  if (rows.empty()) failEmpty(file, columns.empty() ? "record" : columns.front(), range);
}

void Sheet::keepBands(Range range, const std::string& file) {
  const std::int16_t newLow = std::max(low, range.first);
  const std::int16_t newHigh = std::min(high, range.last);
  if (newLow > newHigh) failEmpty(file, "band", range);
  const auto size = static_cast<std::size_t>(newHigh - newLow) + 1;
  for (Row& row : rows) {
    const auto begin =
        row.bands.begin() +
        std::min<std::ptrdiff_t>(newLow - low, static_cast<std::ptrdiff_t>(row.bands.size()));
    row.bands.erase(row.bands.begin(), begin);
    if (row.bands.size() > size) row.bands.resize(size);
  }
  setBands(*this, newLow, newHigh);
}

void Sheet::dropColumns(std::string_view ending) {
  for (std::size_t i = columns.size(); i-- > 0;) {
    if (!columns[i].ends_with(ending)) continue;
    columns.erase(columns.begin() + static_cast<std::ptrdiff_t>(i));
    for (Row& row : rows) row.cells.erase(row.cells.begin() + static_cast<std::ptrdiff_t>(i));
  }
}

std::pair<std::int16_t, std::int16_t> bandsOf(const aq::AQ_SpectralTimeHistory& history) {
  std::pair<std::int16_t, std::int16_t> bands{0, -1};
  bool any = false;
  for (const auto& [record, spectrum] : history) {
    const std::pair own{spectrum->LowBand(), spectrum->HighBand()};
    bands =
        any ? std::pair{std::min(bands.first, own.first), std::max(bands.second, own.second)} : own;
    any = true;
  }
  return bands;
}

Sheet sheetOf(const Measurement& measurement) {
  Sheet sheet = std::visit([](const auto& read) { return sheetFrom(read); }, measurement.data);
  std::sort(sheet.rows.begin(), sheet.rows.end(),
            [](const auto& a, const auto& b) { return a.number < b.number; });
  return sheet;
}

double tidySeconds(double seconds) { return std::round(seconds * 1e5) / 1e5; }

double tidy(float value) { return aq::Variant(fmt::format("{}", value)).toDouble(); }

}  // namespace aqdata
