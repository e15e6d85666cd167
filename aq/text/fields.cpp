#include "aq/text/fields.h"

#include <utility>

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

std::string_view cleanField(std::string_view text, std::string& room) {
  if (text.find('"') != text.npos) {
    room.assign(text);
    std::erase(room, '"');
    text = room;
  }
  return trimmed(text);
}

void split(std::string_view text, std::string_view delimiter,
           std::vector<std::string_view>& pieces) {
  for (;;) {
    const std::size_t at = delimiter.empty() ? text.npos : text.find(delimiter);
    pieces.push_back(text.substr(0, at));
    if (at == text.npos) return;
    text.remove_prefix(at + delimiter.size());
  }
}

FieldReader::FieldReader(std::string_view line, std::size_t lineNumber, Form form)
    : rest_(trimmed(line)),
      raw_(form == Form::Raw),
      quoted_(!raw_ && line.find('"') != line.npos),
      line_(lineNumber) {}

std::string_view FieldReader::text(const char* expected) {
  ++number_;
  if (done_) failRead(line_, number_, expected, "the end of the line");
  const std::size_t comma = rest_.find(',');
  done_ = comma == rest_.npos;
  field_ = rest_.substr(0, comma);
  if (!done_) rest_.remove_prefix(comma + 1);
  return raw_ ? field_ : cleanText();
}

std::string_view FieldReader::cleanText() {
  return quoted_ ? cleanField(field_, room_) : trimmed(field_);
}

void FieldReader::numbers(std::span<double> values, const char* expected) {
  while (!values.empty()) {
    const LevelsTaken taken = levelsAtFront(rest_, ',', values);
    number_ += taken.count;
    rest_.remove_prefix(taken.length);
    values = values.subspan(taken.count);
    if (values.empty()) return;
    values.front() = number(expected);
    values = values.subspan(1);
  }
}

double FieldReader::number(const char* expected) { return convert(expected, doubleFrom); }

float FieldReader::single(const char* expected) { return convert(expected, singleFrom); }

std::int16_t FieldReader::int16(const char* expected) { return convert(expected, int16From); }

std::uint8_t FieldReader::byte(const char* expected) { return convert(expected, byteFrom); }

void FieldReader::timeOfDay(AQ_Time& time) {
  convert("a time of day hh:mm:ss", [&](std::string_view text) { time.TODstring(text); });
}

void FieldReader::skip(int count, const char* expected) {
  for (int i = 0; i < count; ++i) static_cast<void>(text(expected));
}

void FieldReader::fail(std::string expected) const {
  const bool blankLine = number_ == 1 && done_ && trimmed(field_).empty();
  failRead(line_, number_, std::move(expected), blankLine ? "a blank line" : shown(field_));
}

}  // namespace aq
