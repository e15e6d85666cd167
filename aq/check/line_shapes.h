#pragma once

#include <cstddef>
#include <limits>
#include <string>
#include <string_view>
#include <vector>

#include "aq/check/decimals.h"
#include "aq/check/reporter.h"
#include "aq/text/line_reader.h"

namespace aq {

/// The largest number of fields that a data line should have. The last `numbers` of them may have
/// decimals; if `alike`, all these columns have the same number of decimals.
struct DataColumns {
  std::size_t fields;
  std::size_t numbers;
  bool alike = false;
};

/// The shapes of the data lines of a readable file: their numbers of fields and decimals. They
/// reveal truncation and damage by spreadsheets that the values do not show.
class LineShapes {
 public:
  explicit LineShapes(const DataColumns& columns)
      : columns_(columns), decimals_(columns.alike ? 1 : columns.numbers) {}

  /// Takes all data lines of a file: the lines after line `header` that are not blank.
  LineShapes(const std::string& path, std::size_t header, const DataColumns& columns);

  /// The number of data lines.
  [[nodiscard]] std::size_t count() const { return count_; }

  /// Takes the next data line.
  void see(const LineReader& lines);

  /// Whether most lines seem to have numbers that were split at their decimal commas, which makes
  /// every value wrong.
  [[nodiscard]] bool decimalCommas() const;

  /// Reports irregular shapes; if there are decimal commas, nothing but these.
  void report(const std::string& path, const Reporter& report) const;

 private:
  struct Shape {
    std::size_t fields;
    std::size_t decimals;  // decimals of the last field
    bool empty;            // the last field is empty
    bool open;             // the last field is empty or ends in a point
  };

  static Shape shapeOf(std::string_view line);
  void reportExtra(const std::string& path, const Reporter& report) const;
  /// Returns the place of the finding; line 0 if the last line is like the others.
  [[nodiscard]] FindingPlace reportCut(const Reporter& report) const;
  void seeDecimals(const LineReader& lines);

  DataColumns columns_;
  std::vector<Decimals> decimals_;
  std::size_t count_ = 0;
  std::size_t first_ = 0;     // the first line's number
  std::size_t line_ = 0;      // the last line's number
  std::size_t divided_ = 0;   // lines whose numbers seem to be split at decimal commas
  std::size_t extended_ = 0;  // lines with fields that are not read
  Shape last_{0, 0, false, false};
  // The fewest fields and decimals in the lines before the last; `open` if any of those lines is.
  Shape least_{std::numeric_limits<std::size_t>::max(), std::numeric_limits<std::size_t>::max(),
               false, false};
  bool ended_ = true;  // the last line has a line ending
};

/// Reports a last line that has no line ending.
void checkEnd(const std::string& path, const Reporter& report);

}  // namespace aq
