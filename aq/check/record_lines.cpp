#include "aq/check/record_lines.h"

#include <algorithm>

#include "aq/text/fields.h"
#include "aq/text/line_reader.h"

namespace aq {

RecordLines::RecordLines(const std::string& path, const HeaderCheck& header, std::size_t fields,
                         const Reporter& report) {
  LineReader lines(path);
  header.passHeader(lines);
  while (lines.next()) {
    ++count_;
    const std::string_view line = lines.line();
    see(FieldReader(lines).int16("a record number"), lines.number(), report);
    const auto found = static_cast<std::size_t>(std::count(line.begin(), line.end(), ',')) + 1;
    if (found <= fields) continue;
    report(Kind::ExtraFields, {.line = lines.number(), .field = fields + 1},
           "expected " + std::to_string(fields) + " fields, found " + std::to_string(found));
  }
  if (count_ != 0) reportGaps(report);
}

void RecordLines::reportGaps(const Reporter& report) const {
  std::int32_t before = low() - 1;
  forEach([&](std::int16_t record, std::size_t line) {
    if (record != before + 1) {
      report(Kind::RecordGap, {.line = line, .field = 1, .record = record},
             "record " + std::to_string(record) + " after " + std::to_string(before));
    }
    before = record;
  });
}

/// Where the first number comes again, the data begin again; the records of before are then no
/// repeated ones.
void RecordLines::see(std::int16_t record, std::size_t line, const Reporter& report) {
  const FindingPlace place{.line = line, .field = 1, .record = record};
  const std::size_t* const stood = lines_.find(record);
  if (setBegins_ == 0) {
    setBegins_ = line;
    first_ = record;
  } else if (record == first_ && before_ != record) {
    report(Kind::SecondDataSet, place,
           "record " + std::to_string(record) + " comes again: what follows replaces the records " +
               "of the same numbers");
    setBegins_ = line;
  } else if (stood != nullptr && *stood >= setBegins_) {
    report(Kind::RecordRepeated, place, "it stands in line " + std::to_string(*stood) + " too");
  } else if (record < before_) {
    report(Kind::RecordFalls, place,
           "record " + std::to_string(record) + " after " + std::to_string(before_));
  }
  before_ = record;
  lines_.touch(record) = line;
}

}  // namespace aq
