#include "aq/text/fields.h"

#include <algorithm>
#include <utility>

#include "aq/text/date_text.h"
#include "aq/text/plain_number.h"

namespace aq {

void failRead(std::size_t line, std::size_t field, std::string expected, std::string found) {
  throw ReadFailure{{.file = {},
                     .line = line,
                     .field = field,
                     .expected = std::move(expected),
                     .found = std::move(found)}};
}

void takeLine(LineReader& lines, const char* what, std::string_view keyword) {
  if (lines.next()) return;
  failRead(lines.number() + 1, 0, what + std::string(keyword), "the end of the file");
}

std::string expectedFor(const char* expected, const Error& error) {
  std::string words = expected;
  if (error.code() == ErrorCode::Overflow) words += " in range";
  return words;
}

std::string_view cleanField(std::string_view text, std::string& scratch) {
  if (text.find('"') != text.npos) {
    scratch.assign(text);
    std::erase(scratch, '"');
    text = scratch;
  }
  return trimmed(text);
}

std::string_view keywordIn(std::string_view field) {
  const std::size_t mark = field.find(kKeywordMark);
  return mark == field.npos ? std::string_view() : field.substr(0, mark);
}

void split(std::string_view text, std::string_view delimiter,
           std::vector<std::string_view>& pieces) {
  forEachPiece(text, delimiter, [&](std::string_view piece) { pieces.push_back(piece); });
}

std::string_view FieldReader::text(const char* expected) {
  ++number_;
  if (done_) failRead(line_, number_, expected, "the end of the line");
  take(std::min(rest_.find(','), rest_.size()));
  return raw_ ? field_ : cleanText();
}

std::string_view FieldReader::cleanText() {
  return raw_ ? trimmed(field_) : cleanField(field_, scratch_);
}

/// Takes a number in plain form in one pass; leaves other fields for `convert`.
template <class Real>
bool FieldReader::takePlain(Real& number) {
  if (done_) return false;
  const PlainNumber plain = plainNumber(rest_);
  if (!numberFrom(plain, number)) return false;
  ++number_;
  take(plain.length);
  return true;
}

double FieldReader::number(const char* expected) {
  double number = 0;
  return takePlain(number) ? number : convert(expected, doubleFrom);
}

float FieldReader::single(const char* expected) {
  float number = 0;
  return takePlain(number) ? number : convert(expected, singleFrom);
}

std::int16_t FieldReader::int16(const char* expected) {
  const PlainInteger plain = done_ ? PlainInteger() : plainInteger(rest_);
  if (plain.length == 0) return convert(expected, int16From);
  ++number_;
  take(plain.length);
  return plain.value;
}

std::uint8_t FieldReader::byte(const char* expected) { return convert(expected, byteFrom); }

double FieldReader::timeOfDay() {
  const PlainClock plain = done_ ? PlainClock() : plainClock(rest_);
  if (plain.length != 0) {
    ++number_;
    take(plain.length);
    return plain.seconds;
  }
  return convert("a time of day hh:mm:ss", [](std::string_view text) {
    AQ_Time time;
    time.TODstring(text);
    return time.TODseconds();
  });
}

void FieldReader::skip(int count, const char* expected) {
  for (int i = 0; i < count; ++i) static_cast<void>(text(expected));
}

void FieldReader::fail(std::string expected) const {
  const bool blankLine = number_ == 1 && done_ && trimmed(field_).empty();
  failRead(line_, number_, std::move(expected), blankLine ? "a blank line" : shown(field_));
}

}  // namespace aq
