#include "aq/check/checks.h"
#include "aq/check/header_check.h"
#include "aq/check/record_lines.h"
#include "aq/detail/pointers.h"
#include "aq/masking/last_good_band.h"
#include "aq/text/checked_keywords.h"
#include "aq/text/fields.h"
#include "aq/text/line_reader.h"

namespace aq {
namespace {

/// Reports masks with an unknown letter, which the reader replaces with "-".
void checkLetters(const std::string& path, const HeaderCheck& header, const Reporter& report) {
  const auto [low, high] = header.integersOf(keywords::kBands);
  LineReader lines(path);
  header.passHeader(lines);
  while (lines.next()) {
    FieldReader fields(lines);
    FindingPlace place{.line = lines.number(), .field = 1};
    place.record = fields.int16("a record number");
    for (std::int32_t band = low; band <= high; ++band) {
      const std::string_view letters = fields.text("a mask");
      ++place.field;
      AQ_Mask mask;
      mask.MaskString(letters);
      if (mask.MaskString() == letters) continue;
      place.band = static_cast<std::int16_t>(band);
      report(Kind::MaskLetters, place, shown(letters) + " is read as \"" + mask.MaskString() + '"');
    }
  }
}

void checkLastGoodBands(const RecordLines& records, const AQ_MaskMap& map, std::size_t field,
                        const Reporter& report) {
  records.forEach([&](std::int16_t record, std::size_t line) {
    AQ_MaskRow& row = *map.Row(record);
    const std::int16_t found = row.LGB();
    const std::int16_t expected = lastGoodBand(row);
    if (found == expected) return;
    report(Kind::LastGoodBand, {.line = line, .field = field, .record = record},
           "the masks give " + std::to_string(expected) + ", found " + std::to_string(found));
  });
}

void compareRecords(const AQ_SpectralTimeHistory& history, const AQ_MaskMap& map,
                    const Reporter& report) {
  const std::int32_t count = map.Count();
  for (std::int32_t number = 1; number <= count; ++number) {
    const auto record = static_cast<std::int16_t>(number);
    FindingPlace place;
    place.record = number;
    if (!map.contains(record) || !history.contains(record)) {
      report(Kind::MapMisfit, place,
             map.contains(record) ? "the history has no such record" : "the map has no row for it");
      continue;
    }
    const auto row = map.Row(record);
    const auto spectrum = history.spectrum(record);
    if (!orThrow(spectrum).Encompasses(orThrow(row))) {
      report(Kind::MapMisfit, place,
             "the map's bands " + std::to_string(row->LowBand()) + " to " +
                 std::to_string(row->HighBand()) + " are not all among the history's " +
                 std::to_string(spectrum->LowBand()) + " to " +
                 std::to_string(spectrum->HighBand()));
    }
  }
}

}  // namespace

Content<AQ_HeaderMask, AQ_MaskMap> check(FileOf<AQ_DataMask> file, const Reporter& report) {
  HeaderCheck header(report);
  Content<AQ_HeaderMask, AQ_MaskMap> read;
  if (!header.reads<AQ_DataMask>(file.path, read)) return {};
  const auto [low, high] = header.integersOf(keywords::kBands);
  const std::size_t bands = low <= high ? static_cast<std::size_t>(high - low) + 1 : 0;
  // The headings of a map repeat the label of the highest band, unless someone has corrected that,
  // so nothing after the labels is compared.
  header.expectLabels(2, low, high);
  const RecordLines records(file.path, header, {bands + 2, 0}, report);
  header.expectCount(keywords::kNumberOfRows, records.count(), "rows");
  checkLetters(file.path, header, report);
  checkLastGoodBands(records, *read.model, bands + 2, report);
  return read;
}

void checkMapFit(const AQ_SpectralTimeHistory& history, const std::string& historyName,
                 const AQ_MaskMap& map, const Reporter& report) {
  if (history.Count() != map.Count()) {
    report(Kind::MapMisfit, {},
           "the map has " + std::to_string(map.Count()) + " rows, but its history " +
               shown(historyName) + " has " + std::to_string(history.Count()) + " records");
  }
  compareRecords(history, map, report);
}

}  // namespace aq
