#pragma once

#include <nlohmann/json.hpp>
#include <string>
#include <string_view>
#include <vector>

#include "tools/aqdata/session.h"

namespace aqdata {

/// How many terminal columns `text` takes; colour codes take none.
[[nodiscard]] std::size_t widthOf(std::string_view text);

/// `text` in at most `width` columns; an ellipsis replaces what is cut from the middle. Unchanged
/// if `width` is below 3.
[[nodiscard]] std::string shortened(std::string_view text, std::size_t width);

/// A cell as a table shows it: strings escaped and without quotes, nothing for null.
[[nodiscard]] std::string cellText(const Json& value);

/// Like `cellText`, but joins the entries of a list with `between`.
[[nodiscard]] std::string listText(const Json& value, std::string_view between);

/// `text` wrapped to lines of at most `width` columns, broken at blanks where possible.
[[nodiscard]] std::vector<std::string> wrapped(std::string_view text, std::size_t width);

/// A count with its noun, such as "1 record" or "2 records".
[[nodiscard]] std::string counted(std::size_t count, std::string_view ofWhat);

/// The entry of `names` that is most similar to `name`; empty if none is similar.
[[nodiscard]] std::string nearest(std::string_view name, const std::vector<std::string>& names);

/// The bounds of a range such as "10:40", "10:", ":40" or "10".
struct Range {
  std::int16_t first = -32768;
  std::int16_t last = 32767;
};
/// Parses the value of an option such as --records; `ofWhat` is its name without dashes. Throws
/// `Failure`.
[[nodiscard]] Range rangeFrom(const std::string& text, std::string_view ofWhat);

/// Lines of cells in aligned columns.
class Table {
 public:
  struct Column {
    std::string heading;
    bool number = false;    ///< aligned right
    bool optional = false;  ///< may be left out if the table is too wide, the last column first
  };

  explicit Table(std::vector<Column> columns) : columns_(std::move(columns)) {}

  /// Adds a row. Cells may contain colour codes.
  void add(std::vector<std::string> cells) { rows_.push_back(std::move(cells)); }

  /// Fits the table to a width as far as possible: leaves out optional columns, which the last
  /// printed line names, and then shortens the cells of the first column.
  void fit(std::size_t width);

  /// Prints the table. Columns that do not fit the terminal follow below, with the first column
  /// repeated.
  void print(Session& session) const;

 private:
  [[nodiscard]] std::vector<std::size_t> widths() const;
  [[nodiscard]] std::size_t width() const;
  void printBlock(Session& session, const std::vector<std::size_t>& places,
                  const std::vector<std::size_t>& widths) const;

  std::vector<Column> columns_;
  std::vector<std::vector<std::string>> rows_;
  std::vector<std::string> leftOut_;  // headings of omitted columns
};

}  // namespace aqdata
