#pragma once

#include <algorithm>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "aq/core/error.h"
#include "aq/core/export.h"
#include "aq/core/file_failure.h"
#include "aq/core/time.h"
#include "aq/text/fields_taken.h"
#include "aq/text/line_reader.h"
#include "aq/text/number_text.h"
#include "aq/text/word.h"

namespace aq {

/// A failure with its place, thrown by readers of text; the caller adds the file's name.
struct ReadFailure {
  FileFailure failure;
};

/// Throws `ReadFailure` for a field of a line, for the whole line if `field` is 0, or for the whole
/// file if `line` is 0 too.
[[noreturn]] AQ_API void failRead(std::size_t line, std::size_t field, std::string expected,
                                  std::string found);

/// Goes to the next line. Fails at the end of the file; the failure says that `what` and `keyword`
/// were expected.
AQ_API void takeLine(LineReader& lines, const char* what, std::string_view keyword = {});

/// `expected`, with " in range" added if `error` is an overflow.
[[nodiscard]] AQ_API std::string expectedFor(const char* expected, const Error& error);

/// `text` without its double quotes and outer blanks, as a field of delimited text is read.
/// `scratch` holds the result when there are quotes.
[[nodiscard]] AQ_API std::string_view cleanField(std::string_view text, std::string& scratch);

/// Separates the keyword of a header line from its value.
inline constexpr std::string_view kKeywordMark = "**";

/// The part of a header line's first field before `kKeywordMark`; empty if it has no mark.
[[nodiscard]] AQ_API std::string_view keywordIn(std::string_view field);

/// Calls `put` with each part of `text` between its delimiters: n delimiters give n + 1 parts. An
/// empty delimiter splits nothing.
template <class Put>
void forEachPiece(std::string_view text, std::string_view delimiter, const Put& put) {
  std::size_t begin = 0;
  const auto endPiece = [&](std::size_t end) {
    put(text.substr(begin, end - begin));
    begin = end + delimiter.size();
  };
  std::size_t at = 0;
  if (delimiter.size() == 1) {
    for (; text.size() - at >= kWordBytes; at += kWordBytes) {
      std::uint64_t marks = marksOf(delimiter.front(), wordOfText(text.substr(at)));
      for (; marks != 0; marks &= marks - 1) {
        endPiece(at + static_cast<std::size_t>(std::countr_zero(marks)) / 8);
      }
    }
  }
  while (!delimiter.empty() && (at = text.find(delimiter, std::max(at, begin))) != text.npos) {
    endPiece(at);
  }
  put(text.substr(begin));
}

/// Appends the parts that `forEachPiece` finds to `pieces`.
AQ_API void split(std::string_view text, std::string_view delimiter,
                  std::vector<std::string_view>& pieces);

/// The comma-separated fields of one line, taken from left to right. Throws `ReadFailure` with the
/// place for a field that is missing or does not convert.
class AQ_API FieldReader {
 public:
  /// Whether fields lose their double quotes and outer blanks.
  enum class Form { Clean, Raw };

  FieldReader(std::string_view line, std::size_t lineNumber, Form form = Form::Clean)
      : rest_(trimmed(line)), raw_(form == Form::Raw), line_(lineNumber) {}
  explicit FieldReader(const LineReader& lines, Form form = Form::Clean)
      : FieldReader(lines.line(), lines.number(), form) {}

  [[nodiscard]] std::string_view text(const char* expected);
  /// Converts the next field with `conversion`; an `Error` from `conversion` becomes the failure.
  template <class Conversion>
  auto convert(const char* expected, const Conversion& conversion) {
    return convertTaken(expected, text(expected), conversion);
  }

  [[nodiscard]] double number(const char* expected);
  [[nodiscard]] float single(const char* expected);
  [[nodiscard]] std::int16_t int16(const char* expected);
  [[nodiscard]] std::uint8_t byte(const char* expected);
  /// The next field as a time of day, in seconds after midnight.
  [[nodiscard]] double timeOfDay();

  /// Takes the fields that `takeSome` converts from the start of the rest of the line to `values`,
  /// and returns how many there were. `takeSome` returns `FieldsTaken`.
  template <class Value, class TakeSome>
  [[nodiscard]] std::size_t takeRun(std::span<Value> values, const TakeSome& takeSome) {
    if (done_) return 0;
    const FieldsTaken taken = takeSome(rest_, values);
    number_ += taken.count;
    rest_.remove_prefix(taken.length);
    done_ = taken.last;
    return taken.count;
  }

  /// The part of the line not yet taken.
  [[nodiscard]] std::string_view rest() const { return done_ ? std::string_view() : rest_; }

  /// The largest number of fields that the rest of the line can have.
  [[nodiscard]] std::size_t mostLeft() const { return done_ ? 0 : rest_.size() + 1; }

  /// Skips `count` fields.
  void skip(int count, const char* expected);

  /// Converts the last field of the line, even if already taken, with `conversion`.
  template <class Conversion>
  auto convertLast(const char* expected, const Conversion& conversion) {
    while (!done_) static_cast<void>(text(expected));
    return convertTaken(expected, cleanText(), conversion);
  }

  /// Fails at the last field taken.
  [[noreturn]] void fail(std::string expected) const;

 private:
  template <class Real>
  [[nodiscard]] bool takePlain(Real& number);
  /// Takes a field of `size` characters, and skips the comma after it if there is one.
  void take(std::size_t size) {
    field_ = rest_.substr(0, size);
    done_ = size == rest_.size();
    rest_.remove_prefix(done_ ? size : size + 1);
  }
  [[nodiscard]] std::string_view cleanText();

  template <class Conversion>
  auto convertTaken(const char* expected, std::string_view field, const Conversion& conversion) {
    try {
      return conversion(field);
    } catch (const Error& error) {
      fail(expectedFor(expected, error));
    }
  }

  std::string_view rest_;
  std::string_view field_;
  bool raw_;
  bool done_ = false;  // the last field was taken
  std::size_t line_;
  std::size_t number_ = 0;  // number of the last field taken
  std::string scratch_;
};

}  // namespace aq
