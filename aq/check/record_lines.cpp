#include "aq/check/record_lines.h"

#include "aq/text/fields.h"
#include "aq/text/line_reader.h"

namespace aq {

RecordLines::RecordLines(const std::string& path, const HeaderCheck& header,
                         const DataColumns& columns, const Reporter& report) {
  LineShapes shapes(columns);
  LineReader shaped(path);
  header.passHeader(shaped);
  while (shaped.next()) shapes.see(shaped);
  shapes.report(path, report);
  readable_ = !shapes.decimalCommas();
  if (!readable_) return;
  LineReader lines(path);
  header.passHeader(lines);
  while (lines.next()) {
    ++count_;
    see(FieldReader(lines).int16("a record number"), lines.number(), report);
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

/// If the first number appears again after another one, a new data set begins, whose records do not
/// count as repeats of earlier ones.
void RecordLines::see(std::int16_t record, std::size_t line, const Reporter& report) {
  const FindingPlace place{.line = line, .field = 1, .record = record};
  const std::size_t* const earlier = lines_.find(record);
  if (setBegins_ == 0) {
    setBegins_ = line;
    first_ = record;
  } else if (record == first_ && before_ != record) {
    report(Kind::SecondDataSet, place,
           "record " + std::to_string(record) +
               " appears again: the records from here on replace those with the same number");
    setBegins_ = line;
  } else if (earlier != nullptr && *earlier >= setBegins_) {
    report(Kind::RecordRepeated, place, "it is also in line " + std::to_string(*earlier));
  } else if (record < before_) {
    report(Kind::RecordFalls, place,
           "record " + std::to_string(record) + " after " + std::to_string(before_));
  }
  before_ = record;
  lines_.touch(record) = line;
}

}  // namespace aq
