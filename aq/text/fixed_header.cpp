#include "aq/text/fixed_header.h"

#include <limits>

#include "aq/core/error.h"
#include "aq/core/platform.h"
#include "aq/text/date_text.h"
#include "aq/text/number_text.h"

namespace aq {
namespace {

constexpr Columns kKeyword{1, 20};
constexpr std::size_t kValue = kKeyword.last + 1;
constexpr std::size_t kNumberWidth = 8;
constexpr int kSecondsDecimals = 3;
constexpr double kMostSeconds = 1000;
constexpr const char* kDateTime = "a date and a time mm/dd/yyyy hh:mm:ss.sss";

void expectOneLine(std::string_view text, bool tabs) {
  if (text.find_first_of(tabs ? "\r\n" : "\t\r\n") == text.npos) return;
  throw Error(ErrorCode::InvalidValue,
              std::string("text with a line break") + (tabs ? ": " : " or a tab: ") + shown(text));
}

void setDateTime(std::string_view text, AQ_Time& time) {
  const std::size_t blank = text.find(' ');
  if (blank == text.npos) throw Error(ErrorCode::TypeMismatch, kDateTime);
  const double date = dateFrom(text.substr(0, blank));
  const double seconds = secondsOfDayFrom(text.substr(blank));
  time.CurrentDate(date);
  time.assignSeconds(seconds, time.RelSeconds());
}

}  // namespace

// Reading.

/// Goes to the next line, compares its keyword and finds its value.
void FixedHeaderReader::take(std::string_view keyword, const char* expected) {
  takeLine(lines_, "the header line ", keyword);
  FixedFieldReader fields(lines_);
  if (fields.take(kKeyword, "a keyword") != keyword) {
    fields.fail("the keyword " + std::string(keyword));
  }
  value_ = fields.takeRest(kValue, expected);
  showLine(observer_,
           {lines_.number(), HeaderLine::Use::Keyword, keyword, lines_.line(), value_, 0});
}

void FixedHeaderReader::fail(std::string expected) const {
  failRead(lines_.number(), 2,
           std::move(expected) + " from column " + std::to_string(kValue) + " on", shown(value_));
}

void FixedHeaderReader::constant(std::string_view keyword, std::string_view value,
                                 const char* expected) {
  take(keyword, expected);
  if (value_ != value) fail(expected);
}

void FixedHeaderReader::text(std::string_view keyword, std::string& value) {
  take(keyword, "text");
  value = value_;
}

void FixedHeaderReader::dateTime(std::string_view keyword, AQ_Time& time) {
  take(keyword, kDateTime);
  try {
    setDateTime(value_, time);
  } catch (const Error&) {
    fail(kDateTime);
  }
}

void FixedHeaderReader::seconds(std::string_view keyword, double& value) {
  constexpr const char* kExpected = "a number of seconds above 0 and below 1000";
  take(keyword, kExpected);
  try {
    value = doubleFrom(value_);
  } catch (const Error&) {
    fail(kExpected);
  }
  if (!(value > 0 && value < kMostSeconds)) fail(kExpected);
}

void FixedHeaderReader::integer(std::string_view keyword, std::int16_t& value, std::int16_t low,
                                std::int16_t high) {
  const std::string expected =
      "an integer from " + std::to_string(low) + " to " + std::to_string(high);
  take(keyword, expected.c_str());
  try {
    value = int16From(value_);
  } catch (const Error&) {
    fail(expected);
  }
  if (value < low || value > high) fail(expected);
}

void FixedHeaderReader::lines(std::string_view keyword,
                              const std::shared_ptr<Collection<std::string>>& block) {
  std::int16_t count = 0;
  integer(keyword, count, 0, std::numeric_limits<std::int16_t>::max());
  for (std::int32_t i = 0; i < count; ++i) {
    takeLine(lines_, "one more line of ", keyword);
    showLine(observer_, {lines_.number(), HeaderLine::Use::Text, {}, lines_.line(), {}, 0});
    block->Add(std::string(lines_.line()));
  }
}

void FixedHeaderReader::headings() {
  takeLine(lines_, "the line of column headings");
  showLine(observer_, {lines_.number(), HeaderLine::Use::Headings, {}, lines_.line(), {}, 0});
}

// Writing.

void FixedHeaderWriter::line(std::string_view keyword, std::string_view value) {
  const std::size_t begin = text_.size();
  text_ += keyword;
  text_.append(kKeyword.width() - keyword.size(), ' ');
  text_ += value;
  endLine(text_, begin);
}

void FixedHeaderWriter::text(std::string_view keyword, const std::string& value) {
  expectOneLine(value, false);
  line(keyword, value);
}

void FixedHeaderWriter::throwNoWord(const char* expected) {
  throw Error(ErrorCode::InvalidValue,
              std::string("expected ") + expected + ", found another value");
}

void FixedHeaderWriter::dateTime(std::string_view keyword, const AQ_Time& time) {
  std::string value = dateText(time.CurrentDate()) + ' ';
  appendMilliseconds(value, time.TODseconds());
  line(keyword, value);
}

void FixedHeaderWriter::seconds(std::string_view keyword, double value) {
  const std::int64_t thousandths =
      scaled(value, kSecondsDecimals, kNumberWidth - 1, "a number of seconds");
  if (thousandths <= 0) {
    throw Error(ErrorCode::InvalidValue, std::string(keyword) + ": expected a number above 0");
  }
  std::string text(kNumberWidth, ' ');
  putScaled(text.data(), thousandths, kSecondsDecimals, kNumberWidth);
  line(keyword, text);
}

void FixedHeaderWriter::integer(std::string_view keyword, std::int16_t value, std::int16_t low,
                                std::int16_t high) {
  if (value < low || value > high) {
    throw Error(ErrorCode::InvalidValue, std::string(keyword) + ": " + std::to_string(value) +
                                             " is not from " + std::to_string(low) + " to " +
                                             std::to_string(high));
  }
  number(keyword, value);
}

void FixedHeaderWriter::number(std::string_view keyword, std::int32_t value) {
  std::string text;
  appendRight(text, numberText(value), kNumberWidth);
  line(keyword, text);
}

void FixedHeaderWriter::lines(std::string_view keyword,
                              const std::shared_ptr<Collection<std::string>>& block) {
  const std::int32_t count = block ? block->Count() : 0;
  if (count > std::numeric_limits<std::int16_t>::max()) {
    throw Error(ErrorCode::InvalidValue, "more than 32767 lines of " + std::string(keyword));
  }
  number(keyword, count);
  if (count == 0) return;
  for (const std::string& text : *block) {
    expectOneLine(text, true);
    text_ += text;
    text_ += platform::lineEnd;
  }
}

}  // namespace aq
