#include "aq/check/line_shapes.h"

#include <algorithm>

#include "aq/check/text_form.h"
#include "aq/text/number_text.h"

namespace aq {
namespace {

constexpr const char* kNoEnd = "the last line has no line ending, so the file may be cut off";

/// `line` without trailing empty fields.
std::string_view withoutEmptyEnd(std::string_view line) {
  const std::size_t last = line.find_last_not_of(", ");
  return line.substr(0, last == line.npos ? 0 : last + 1);
}

/// The fields of a line after the first two, one of which may be a time with a decimal point.
std::string_view afterTwoFields(std::string_view line) {
  for (int i = 0; i < 2; ++i) line.remove_prefix(std::min(line.find(','), line.size() - 1) + 1);
  return line;
}

std::size_t fieldsIn(std::string_view line) {
  return static_cast<std::size_t>(std::count(line.begin(), line.end(), ',')) + 1;
}

}  // namespace

LineShapes::LineShapes(const std::string& path, std::size_t header, const DataColumns& columns)
    : LineShapes(columns) {
  LineReader lines(path);
  while (lines.next()) {
    if (lines.number() > header && !trimmed(lines.line()).empty()) see(lines);
  }
}

LineShapes::Shape LineShapes::shapeOf(std::string_view line) {
  line = trimmed(line);
  const std::string_view field = line.substr(line.rfind(',') + 1);
  const std::size_t point = field.find('.');
  return {fieldsIn(line), point == field.npos ? 0 : field.size() - point - 1, field.empty(),
          field.empty() || field.ends_with('.')};
}

void LineShapes::see(const LineReader& lines) {
  if (count_ == 0) {
    first_ = lines.number();
  } else {
    least_.fields = std::min(least_.fields, last_.fields);
    least_.decimals = std::min(least_.decimals, last_.decimals);
    least_.open = least_.open || last_.open;
  }
  ++count_;
  last_ = shapeOf(lines.line());
  line_ = lines.number();
  ended_ = lines.ended();
  seeDecimals(lines);
  if (last_.fields <= columns_.fields) return;
  ++extended_;
  if (columns_.numbers == 0) return;
  const std::string_view held = withoutEmptyEnd(lines.line());
  const std::size_t most = columns_.fields + std::max<std::size_t>(1, columns_.numbers / 2);
  if (fieldsIn(held) >= most && afterTwoFields(held).find('.') == held.npos) ++divided_;
}

void LineShapes::seeDecimals(const LineReader& lines) {
  if (columns_.numbers == 0) return;
  const std::size_t first = columns_.fields - columns_.numbers + 1;
  std::string_view rest = lines.line();
  for (std::size_t field = 1; field <= columns_.fields; ++field) {
    const std::size_t comma = std::min(rest.find(','), rest.size());
    if (field >= first) {
      Decimals& decimals = decimals_[columns_.alike ? 0 : field - first];
      decimals.see(rest.substr(0, comma), {.line = lines.number(), .field = field});
    }
    if (comma == rest.size()) return;
    rest.remove_prefix(comma + 1);
  }
}

bool LineShapes::decimalCommas() const { return divided_ != 0 && divided_ * 2 > count_; }

void LineShapes::report(const std::string& path, const Reporter& report) const {
  if (decimalCommas()) {
    report(Kind::DecimalComma, {.line = first_},
           "lines have more than " + std::to_string(columns_.fields) +
               " fields: " + std::string(kDecimalCommaCure));
    return;
  }
  if (extended_ != 0) reportExtra(path, report);
  if (count_ == 0) return;
  const FindingPlace told = reportCut(report);
  for (const Decimals& decimals : decimals_) decimals.report(told, report);
}

/// Reports each line with extra fields. Lines with only empty extra fields, such as spreadsheets
/// add, share one finding.
void LineShapes::reportExtra(const std::string& path, const Reporter& report) const {
  LineReader lines(path);
  std::size_t empty = 0;
  std::size_t firstEmpty = 0;
  while (lines.next()) {
    const std::size_t found = fieldsIn(lines.line());
    if (lines.number() < first_ || found <= columns_.fields) continue;
    if (fieldsIn(withoutEmptyEnd(lines.line())) <= columns_.fields) {
      if (++empty == 1) firstEmpty = lines.number();
      continue;
    }
    report(
        Kind::ExtraFields, {.line = lines.number(), .field = columns_.fields + 1},
        "expected " + std::to_string(columns_.fields) + " fields, found " + std::to_string(found));
  }
  if (empty == 0) return;
  report(Kind::ExtraFields, {.line = firstEmpty, .field = columns_.fields + 1},
         "empty fields at the end of " + std::to_string(empty) + (empty == 1 ? " line" : " lines") +
             ", such as spreadsheets add");
}

FindingPlace LineShapes::reportCut(const Reporter& report) const {
  constexpr std::size_t kLinesEnough =
      3;  // other lines needed to know the usual number of decimals
  const auto shorter = [this]() -> std::string {
    if (!ended_) return kNoEnd;
    if (count_ > 1 && last_.fields < std::min(least_.fields, columns_.fields)) {
      return "the last line has " + std::to_string(last_.fields) + " fields, but all others have " +
             std::to_string(least_.fields) + " or more";
    }
    if (last_.open && !least_.open && (count_ > kLinesEnough || !last_.empty)) {
      return "the last field is cut off";
    }
    if (count_ <= kLinesEnough || last_.fields != least_.fields) return {};
    if (last_.decimals >= least_.decimals) return {};
    return "the last number has " + decimalsText(last_.decimals) + ", but those above it have " +
           std::to_string(least_.decimals) + " or more";
  };
  const std::string message = shorter();
  if (message.empty()) return {};
  const FindingPlace place{.line = line_, .field = last_.fields};
  report(Kind::CutShort, place, message);
  return place;
}

void checkEnd(const std::string& path, const Reporter& report) {
  LineReader lines(path);
  while (lines.next()) continue;
  if (!lines.ended()) report(Kind::CutShort, {.line = lines.number()}, kNoEnd);
}

}  // namespace aq
