#pragma once

#include <cstddef>
#include <limits>
#include <string>
#include <string_view>

#include "aq/check/reporter.h"
#include "aq/text/line_reader.h"

namespace aq {

/// The shapes of the data lines of a file that reads: what a cut or a spreadsheet did to them,
/// which the values do not tell.
class LineShapes {
 public:
  /// Data lines have `fields` fields that are read, of which about `numbers` may have decimals.
  LineShapes(std::size_t fields, std::size_t numbers) : fields_(fields), numbers_(numbers) {}

  /// Takes the lines after line `header`.
  LineShapes(const std::string& path, std::size_t header, std::size_t fields, std::size_t numbers);

  /// How many there are.
  [[nodiscard]] std::size_t count() const { return count_; }

  /// Takes the next data line.
  void see(const LineReader& lines);

  /// Whether numbers were divided at their decimal commas, so that none is what it was.
  [[nodiscard]] bool decimalCommas() const;

  /// Reports what is odd, as one finding a cause.
  void report(const std::string& path, const Reporter& report) const;

 private:
  struct Shape {
    std::size_t fields;
    std::size_t decimals;  // of the last field
  };

  static Shape shapeOf(std::string_view line);
  void reportExtra(const std::string& path, const Reporter& report) const;
  void reportCut(const Reporter& report) const;

  std::size_t fields_;
  std::size_t numbers_;
  std::size_t count_ = 0;
  std::size_t first_ = 0;     // the first line's number
  std::size_t line_ = 0;      // the last line's number
  std::size_t divided_ = 0;   // lines with so many fields as decimal commas make
  std::size_t extended_ = 0;  // lines with fields that are not read
  Shape last_{0, 0};
  Shape least_{std::numeric_limits<std::size_t>::max(), std::numeric_limits<std::size_t>::max()};
  bool ended_ = true;  // the last line has a line end
};

/// Reports a last line that has no line end.
void checkEnd(const std::string& path, const Reporter& report);

}  // namespace aq
