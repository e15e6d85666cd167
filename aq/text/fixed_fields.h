#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

#include "aq/core/error.h"
#include "aq/core/export.h"
#include "aq/text/fields.h"
#include "aq/text/line_reader.h"
#include "aq/text/number_text.h"

// Reading and writing text in fixed columns, counted from 1.

namespace aq {

/// The columns of a field, first and last.
struct Columns {
  std::size_t first;
  std::size_t last;

  [[nodiscard]] constexpr std::size_t width() const { return last - first + 1; }
};

/// Takes the fields of one line by their columns, and counts them. A short line reads as if padded
/// with blanks. Throws `ReadFailure` with the place and the columns for a field that has a tab or
/// does not convert.
class AQ_API FixedFieldReader {
 public:
  FixedFieldReader(std::string_view line, std::size_t lineNumber)
      : line_(line), number_(lineNumber) {}
  explicit FixedFieldReader(const LineReader& lines)
      : FixedFieldReader(lines.line(), lines.number()) {}

  /// The text in `columns`, without its outer blanks.
  [[nodiscard]] std::string_view take(Columns columns, const char* expected) {
    ++field_;
    columns_ = columns;
    const std::size_t begin = std::min(columns.first - 1, line_.size());
    found_ = trimmed(line_.substr(begin, columns.last - columns.first + 1));
    if (found_.find('\t') != found_.npos) fail(expected);
    return found_;
  }

  /// The text from column `first` to the end of the line, without its outer blanks.
  [[nodiscard]] std::string_view takeRest(std::size_t first, const char* expected);

  template <class Conversion>
  auto convert(Columns columns, const char* expected, const Conversion& conversion) {
    const std::string_view text = take(columns, expected);
    try {
      return conversion(text);
    } catch (const Error& error) {
      fail(expectedFor(expected, error));
    }
  }

  /// Fails when the line has anything but blanks after column `last`.
  void expectEnd(std::size_t last);

  /// Throws `ReadFailure` for the last field taken; adds its columns to `expected`.
  [[noreturn]] void fail(std::string expected) const;

  /// The rest of the line from column `first`, unchanged.
  [[nodiscard]] std::string_view from(std::size_t first) const {
    return line_.substr(std::min(first - 1, line_.size()));
  }

  /// Counts `count` more fields as taken.
  void pass(std::size_t count) { field_ += count; }

 private:
  std::string_view line_;
  std::size_t number_;
  std::size_t field_ = 0;  // number of the last field taken
  Columns columns_{1, 1};  // columns of the last field taken
  std::string_view found_;
};

/// `value` with 2 or 3 `decimals` as an integer, such as 1.25 as 125; rounds exact halves away from
/// zero. Throws `InvalidValue`, naming `what`, unless it fits `width` columns including the point,
/// a digit before the point and, if negative, the sign.
[[nodiscard]] AQ_API std::int64_t scaled(double value, int decimals, std::size_t width,
                                         const char* what);

/// Writes a number that `scaled` returned, right-aligned in the columns starting at `at`, and
/// returns their end.
AQ_API char* putScaled(char* at, std::int64_t value, int decimals, std::size_t width);

/// Appends `field`, right-aligned in `width` columns.
AQ_API void appendRight(std::string& text, std::string_view field, std::size_t width);

/// Ends a line, dropping trailing blanks appended since `begin`.
AQ_API void endLine(std::string& text, std::size_t begin);

}  // namespace aq
