#include "aq/text/header_reader.h"

#include <optional>
#include <utility>

#include "aq/text/date_text.h"
#include "aq/text/number_text.h"

namespace aq {
namespace {

constexpr std::string_view kFileType = "FileType";

std::string fileTypeWords(std::string_view fileType) {
  return "the file type \"" + std::string(fileType) + '"';
}

/// Piece `number`, from 1, of `text` split at `delimiter`; nothing if there are fewer pieces.
std::optional<std::string_view> piece(std::string_view text, std::string_view delimiter,
                                      std::size_t number) {
  for (; number > 1; --number) {
    const std::size_t at = text.find(delimiter);
    if (at == text.npos) return std::nullopt;
    text.remove_prefix(at + delimiter.size());
  }
  return text.substr(0, text.find(delimiter));
}

}  // namespace

std::string_view HeaderReader::anyTitle() {
  return lines_.next() && findValue() ? value_ : std::string_view();
}

void HeaderReader::title(std::string_view fileType) {
  takeFirstLine(fileType);
  if (!findValue()) failRead(1, 0, fileTypeWords(fileType), shown(lines_.line()));
  show(HeaderLine::Use::Keyword, kFileType);
  if (value_ != fileType) failRead(1, 2, fileTypeWords(fileType), shown(value_));
}

void HeaderReader::titleAfterComma(std::string_view fileType) {
  takeFirstLine(fileType);
  const std::string_view line = lines_.line();
  const std::size_t comma = line.find(',');
  if (comma != line.npos && trimmed(line.substr(comma + 1)) == fileType) return;
  failRead(1, 0, fileTypeWords(fileType), shown(line));
}

void HeaderReader::takeFirstLine(std::string_view fileType) {
  if (!lines_.next()) failRead(1, 0, fileTypeWords(fileType), "an empty file");
}

void HeaderReader::text(std::string_view keyword, std::string& value) {
  takeValue(keyword);
  value = value_;
}

void HeaderReader::single(std::string_view keyword, float& value) {
  takeValue(keyword);
  value = convert("a number", kWhole, singleFrom);
}

void HeaderReader::numbers(std::string_view keyword, double& first, double& second, double& third) {
  takeValue(keyword, 3);
  first = convert("a number", 1, doubleFrom);
  second = convert("a number", 2, doubleFrom);
  third = convert("a number", 3, doubleFrom);
}

void HeaderReader::integers(std::string_view keyword, std::string_view /*separator*/,
                            std::int16_t& first, std::int16_t& second) {
  takeValue(keyword, 2);
  first = convertTo<std::int16_t>("an integer", 1);
  second = convertTo<std::int16_t>("an integer", 2);
}

void HeaderReader::timeOfDay(std::string_view keyword, AQ_Time& time) {
  takeValue(keyword);
  convert("a time of day hh:mm:ss", kWhole, [&](std::string_view text) { time.TODstring(text); });
}

void HeaderReader::currentDateTime(std::string_view keyword, const std::shared_ptr<AQ_Time>& time) {
  takeDate(keyword, *time);
  time->TODstring(convert("a time hh:mm:ss", 2, clockTimeFrom));
}

void HeaderReader::currentDateTime12(std::string_view keyword,
                                     const std::shared_ptr<AQ_Time>& time) {
  takeDate(keyword, *time);
  time->TODstring(twelveHourText(convert("a time hh:mm:ss", 2, clockTimeFrom)));
}

void HeaderReader::takeDate(std::string_view keyword, AQ_Time& time) {
  takeValue(keyword, 2);
  time.CurrentDate(
      convert("a date mm/dd/yyyy", 1, [](std::string_view text) { return dateFrom(text); }));
}

void HeaderReader::lines(std::string_view keyword,
                         const std::shared_ptr<Collection<std::string>>& block,
                         std::int16_t& count) {
  integer(keyword, count);
  for (std::int32_t i = 1; i <= count; ++i) {
    takeLine(lines_, "one more line of ", keyword);
    show(HeaderLine::Use::Text);
    block->Add(beforeMark());
  }
}

void HeaderReader::lines(std::string_view keyword,
                         const std::shared_ptr<Collection<std::string>>& block) {
  std::int16_t count = 0;
  lines(keyword, block, count);
}

std::string HeaderReader::columns() {
  takeLine(lines_, "the line of column headings");
  show(HeaderLine::Use::Headings);
  return beforeMark();
}

void HeaderReader::takeValue(std::string_view keyword, std::size_t fields) {
  takeLine(lines_, "the line of ", keyword);
  const bool found = findValue();
  show(HeaderLine::Use::Keyword, keyword, fields);
  if (found) return;
  const std::string_view line = trimmed(lines_.line());
  failRead(lines_.number(), 0, "the line of " + std::string(keyword) + " with \"**\"",
           line.empty() ? "a blank line" : shown(line));
}

/// Takes the line's value, the text between the line's first "**" and the next, without that text's
/// first character, which is a comma in a well-formed line. False if there is no "**".
bool HeaderReader::findValue() {
  value_ = {};
  const auto afterMark = piece(trimmed(lines_.line()), kKeywordMark, 2);
  if (!afterMark) return false;
  value_ = cleanField(*afterMark, scratch_);
  if (!value_.empty()) value_.remove_prefix(1);
  value_ = trimmed(value_);
  return true;
}

std::string_view HeaderReader::field(std::size_t number, const char* expected) {
  if (number == kWhole) return value_;
  const auto found = piece(value_, ",", number);
  if (!found) failRead(lines_.number(), number + 1, expected, "the end of the line");
  return *found;
}

/// Fails at field `number` of the value; the message counts the keyword as field 1.
void HeaderReader::fail(std::size_t number, std::string expected, std::string_view found) const {
  failRead(lines_.number(), number == kWhole ? 2 : number + 1, std::move(expected), shown(found));
}

void HeaderReader::show(HeaderLine::Use use, std::string_view keyword, std::size_t fields) const {
  if (observer_ == nullptr) return;
  showLine(*observer_, {lines_.number(), use, keyword, lines_.line(), value_, fields});
}

std::string HeaderReader::beforeMark() {
  const std::string_view line = trimmed(lines_.line());
  return std::string(cleanField(line.substr(0, line.find(kKeywordMark)), scratch_));
}

}  // namespace aq
