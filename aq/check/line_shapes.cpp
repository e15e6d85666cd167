#include "aq/check/line_shapes.h"

#include <algorithm>

#include "aq/check/text_form.h"
#include "aq/text/number_text.h"

namespace aq {
namespace {

constexpr const char* kNoEnd = "the last line has no line end, so the file may be cut off";

/// `line` without the empty fields at its end.
std::string_view withoutEmptyEnd(std::string_view line) {
  const std::size_t last = line.find_last_not_of(", ");
  return line.substr(0, last == line.npos ? 0 : last + 1);
}

/// The fields of a line after the first two, of which one may be a time with its own point.
std::string_view afterTwoFields(std::string_view line) {
  for (int i = 0; i < 2; ++i) line.remove_prefix(std::min(line.find(','), line.size() - 1) + 1);
  return line;
}

std::size_t fieldsIn(std::string_view line) {
  return static_cast<std::size_t>(std::count(line.begin(), line.end(), ',')) + 1;
}

}  // namespace

LineShapes::LineShapes(const std::string& path, std::size_t header, std::size_t fields,
                       std::size_t numbers)
    : LineShapes(fields, numbers) {
  LineReader lines(path);
  while (lines.next()) {
    if (lines.number() > header && !trimmed(lines.line()).empty()) see(lines);
  }
}

LineShapes::Shape LineShapes::shapeOf(std::string_view line) {
  line = trimmed(line);
  const std::string_view field = line.substr(line.rfind(',') + 1);
  const std::size_t point = field.find('.');
  return {fieldsIn(line), point == field.npos ? 0 : field.size() - point - 1};
}

void LineShapes::see(const LineReader& lines) {
  if (count_ == 0) {
    first_ = lines.number();
  } else {
    least_.fields = std::min(least_.fields, last_.fields);
    least_.decimals = std::min(least_.decimals, last_.decimals);
  }
  ++count_;
  last_ = shapeOf(lines.line());
  line_ = lines.number();
  ended_ = lines.ended();
  if (last_.fields <= fields_) return;
  ++extended_;
  const std::string_view held = withoutEmptyEnd(lines.line());
  const std::size_t most = fields_ + std::max<std::size_t>(1, numbers_ / 2);
  if (fieldsIn(held) >= most && afterTwoFields(held).find('.') == held.npos) ++divided_;
}

bool LineShapes::decimalCommas() const { return divided_ != 0 && divided_ * 2 > count_; }

void LineShapes::report(const std::string& path, const Reporter& report) const {
  if (decimalCommas()) {
    report(Kind::DecimalComma, {.line = first_},
           "lines have more than " + std::to_string(fields_) +
               " fields: " + std::string(kDecimalCommaCure));
    return;
  }
  if (extended_ != 0) reportExtra(path, report);
  if (count_ != 0) reportCut(report);
}

/// Empty fields, which spreadsheets add to every line, are told once.
void LineShapes::reportExtra(const std::string& path, const Reporter& report) const {
  LineReader lines(path);
  std::size_t empty = 0;
  std::size_t firstEmpty = 0;
  while (lines.next()) {
    const std::size_t found = fieldsIn(lines.line());
    if (lines.number() < first_ || found <= fields_) continue;
    if (fieldsIn(withoutEmptyEnd(lines.line())) <= fields_) {
      if (++empty == 1) firstEmpty = lines.number();
      continue;
    }
    report(Kind::ExtraFields, {.line = lines.number(), .field = fields_ + 1},
           "expected " + std::to_string(fields_) + " fields, found " + std::to_string(found));
  }
  if (empty == 0) return;
  report(Kind::ExtraFields, {.line = firstEmpty, .field = fields_ + 1},
         "empty fields at the end of " + std::to_string(empty) + (empty == 1 ? " line" : " lines") +
             ", as spreadsheets add them");
}

void LineShapes::reportCut(const Reporter& report) const {
  constexpr std::size_t kEnough = 3;  // other lines, to know how many decimals there are
  const FindingPlace place{.line = line_, .field = last_.fields};
  if (!ended_) return report(Kind::CutShort, place, kNoEnd);
  if (count_ > 1 && last_.fields < std::min(least_.fields, fields_)) {
    report(Kind::CutShort, place,
           "the last line has " + std::to_string(last_.fields) + " fields, all others " +
               std::to_string(least_.fields) + " or more");
  } else if (count_ > kEnough && last_.fields == least_.fields &&
             last_.decimals < least_.decimals) {
    report(Kind::CutShort, place,
           "the last number has " + std::to_string(last_.decimals) +
               " decimals, those above it have " + std::to_string(least_.decimals) + " or more");
  }
}

void checkEnd(const std::string& path, const Reporter& report) {
  LineReader lines(path);
  while (lines.next()) continue;
  if (!lines.ended()) report(Kind::CutShort, {.line = lines.number()}, kNoEnd);
}

}  // namespace aq
