#pragma once

#include <nlohmann/json.hpp>
#include <string>
#include <string_view>
#include <vector>

#include "tools/aqdata/session.h"

namespace aqdata {

/// How many columns of a terminal `text` takes, without colours.
[[nodiscard]] std::size_t widthOf(std::string_view text);

/// `text` in at most `width` columns; what is cut out of its middle is marked.
[[nodiscard]] std::string shortened(std::string_view text, std::size_t width);

/// A number as a table shows it, and text as it is; nothing for null.
[[nodiscard]] std::string cellText(const Json& value);

/// As `cellText`; the entries of a list with `between` them.
[[nodiscard]] std::string listText(const Json& value, std::string_view between);

/// `text` in lines of at most `width` columns, broken at blanks.
[[nodiscard]] std::vector<std::string> wrapped(std::string_view text, std::size_t width);

/// As in "1 record" and "2 records".
[[nodiscard]] std::string counted(std::size_t count, std::string_view ofWhat);

/// The one of `names` that comes nearest to `name`; empty when none is near.
[[nodiscard]] std::string nearest(std::string_view name, const std::vector<std::string>& names);

/// The bounds of a range as in "10:40", "10:", ":40" or "10".
struct Range {
  std::int16_t first = -32768;
  std::int16_t last = 32767;
};
/// Of what an option --records, if `ofWhat` is "records", was given. Throws `Failure`.
[[nodiscard]] Range rangeFrom(const std::string& text, std::string_view ofWhat);

/// Lines of cells in columns that line up.
class Table {
 public:
  struct Column {
    std::string heading;
    bool number = false;    ///< to the right
    bool optional = false;  ///< left out where the table is too wide, the last one first
  };

  explicit Table(std::vector<Column> columns) : columns_(std::move(columns)) {}

  /// Cells may have colours.
  void add(std::vector<std::string> cells) { rows_.push_back(std::move(cells)); }

  /// Makes the table fit: leaves optional columns out, which its last line then names, and shortens
  /// the first column.
  void fit(std::size_t width);

  /// Columns that a terminal has no room for follow below, with the first beside them.
  void print(Session& session) const;

 private:
  [[nodiscard]] std::vector<std::size_t> widths() const;
  [[nodiscard]] std::size_t width() const;
  void printBlock(Session& session, const std::vector<std::size_t>& places,
                  const std::vector<std::size_t>& widths) const;

  std::vector<Column> columns_;
  std::vector<std::vector<std::string>> rows_;
  std::vector<std::string> leftOut_;  // headings
};

}  // namespace aqdata
