#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>

#include "aq/core/collection.h"
#include "aq/core/export.h"
#include "aq/core/time.h"
#include "aq/core/words.h"
#include "aq/text/fixed_fields.h"
#include "aq/text/header_observer.h"
#include "aq/text/line_reader.h"

// Header lines with a keyword from column 1 and its value from column 21. The reader and the writer
// have members of the same names, so that one description of a header serves both.

namespace aq {

/// Takes header lines by position and compares their keywords. Throws `ReadFailure` for a line
/// that is missing, has another keyword or has a value that does not convert; field 1 is the
/// keyword, field 2 the value.
class AQ_API FixedHeaderReader {
 public:
  /// Shows `observer` every line that the reader takes; `observer` must outlive the reader.
  FixedHeaderReader(LineReader& lines, const HeaderObserver& observer)
      : lines_(lines), observer_(observer) {}

  /// A line whose value is always the same.
  void constant(std::string_view keyword, std::string_view value, const char* expected);

  void text(std::string_view keyword, std::string& value);

  /// One of the words of an enumeration, ignoring case.
  template <class Enumeration>
  void word(std::string_view keyword, const char* expected, Enumeration& value) {
    take(keyword, expected);
    if (!setByWord(value, upperCased(value_))) fail(expected);
  }

  /// A date and a time of day.
  void dateTime(std::string_view keyword, AQ_Time& time);

  /// A number of seconds above 0 and below 1000.
  void seconds(std::string_view keyword, double& value);

  /// An integer from `low` to `high`.
  void integer(std::string_view keyword, std::int16_t& value, std::int16_t low, std::int16_t high);

  /// A line with a count, then that many lines.
  void lines(std::string_view keyword, const std::shared_ptr<Collection<std::string>>& block);

  /// Skips the line of column headings.
  void headings();

 private:
  void take(std::string_view keyword, const char* expected);
  [[noreturn]] void fail(std::string expected) const;

  LineReader& lines_;
  const HeaderObserver& observer_;
  std::string_view value_;  // of the last keyword line taken
};

/// Appends header lines to a string. Throws `InvalidValue` for text with a line break, for text
/// with a tab except in `lines`, for a number or a time outside its range, for more than 32,767
/// lines, and for an enumeration value without a word; `Overflow` for a date outside the years 1 to
/// 9999.
class AQ_API FixedHeaderWriter {
 public:
  explicit FixedHeaderWriter(std::string& text) : text_(text) {}

  void constant(std::string_view keyword, std::string_view value, const char* /*expected*/) {
    line(keyword, value);
  }
  void text(std::string_view keyword, const std::string& value);

  template <class Enumeration>
  void word(std::string_view keyword, const char* expected, Enumeration value) {
    if (wordOf(value).empty()) throwNoWord(expected);
    line(keyword, wordOf(value));
  }

  void dateTime(std::string_view keyword, const AQ_Time& time);
  void seconds(std::string_view keyword, double value);
  void integer(std::string_view keyword, std::int16_t value, std::int16_t low, std::int16_t high);
  void lines(std::string_view keyword, const std::shared_ptr<Collection<std::string>>& block);

 private:
  [[noreturn]] static void throwNoWord(const char* expected);
  void line(std::string_view keyword, std::string_view value);
  void number(std::string_view keyword, std::int32_t value);

  std::string& text_;
};

}  // namespace aq
