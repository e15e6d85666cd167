#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <utility>

#include "aq/core/collection.h"
#include "aq/core/export.h"
#include "aq/core/file_information.h"
#include "aq/core/time.h"

namespace aq {

/// Writes keyword header lines, as in `Bands**,17, 40`, to a string. `HeaderReader` has
/// members of the same names, so that one description of a header serves both.
class AQ_API HeaderWriter {
 public:
  /// Names and dates of files come from `information`.
  HeaderWriter(std::string& text, std::shared_ptr<FileInformation> information)
      : text_(text), information_(std::move(information)) {}

  /// The first line, which names the kind of file.
  void title(std::string_view fileType);

  /// A line with the value that `get` returns.
  template <class Get, class Set>
  void value(std::string_view keyword, const Get& get, const Set&) {
    line(keyword, get());
  }

  void text(std::string_view keyword, const std::string& value) { line(keyword, value); }
  void textAfterBlank(std::string_view keyword, std::string_view value);
  void integer(std::string_view keyword, std::int32_t value);
  void single(std::string_view keyword, float value);
  void numbers(std::string_view keyword, double first, double second, double third);
  void integers(std::string_view keyword, std::string_view separator, std::int16_t first,
                std::int16_t second);
  void timeOfDay(std::string_view keyword, const AQ_Time& time);

  /// The name under which the file information service records `file`.
  void recordedName(std::string_view keyword, const std::string& file);

  /// Writes the current date and time instead of the header's own.
  void currentDateTime(std::string_view keyword, const std::shared_ptr<AQ_Time>&);
  void currentDateTime12(std::string_view keyword, const std::shared_ptr<AQ_Time>& time) {
    currentDateTime(keyword, time);
  }

  /// The date and time of a source file; the information service chooses between those recorded in
  /// the header and the file's own.
  void dateTimeOf(std::string_view keyword, const std::string& file,
                  const std::shared_ptr<AQ_Time>& recorded);
  void dateTimeOf(std::string_view keyword, const std::string& file, const std::string& recorded) {
    line(keyword, information_->sourceDateTime(file, recorded));
  }

  /// A line with the number of lines, then the lines unchanged; ignores the header's own count. A
  /// missing collection counts as empty.
  void lines(std::string_view keyword, const std::shared_ptr<Collection<std::string>>& block,
             std::int16_t /*count*/ = 0);

  /// The line of column headings above the data lines.
  void columns(std::string_view heading);

 private:
  void line(std::string_view keyword, std::string_view value);

  std::string& text_;
  std::shared_ptr<FileInformation> information_;
};

/// Appends the rows from `first` to `last` by calling `append(number)` for each. Reserves memory
/// for all rows, estimated from the length of the first one, but at most 16 MiB.
template <class Append>
void appendRows(std::string& text, std::int32_t first, std::int32_t last, const Append& append) {
  constexpr std::size_t kLonger = 16;  // later numbers and times may have more digits
  constexpr std::size_t kMost = std::size_t{16} << 20;  // the first row may be far longer than most
  const std::size_t begin = text.size();
  for (std::int32_t number = first; number <= last; ++number) {
    append(number);
    if (number != first) continue;
    const std::size_t row = text.size() - begin + kLonger;
    text.reserve(text.size() + std::min(row * static_cast<std::size_t>(last - first), kMost));
  }
}

}  // namespace aq
