#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include "aq/sdf/record_list.h"

namespace aq::sdf {

/// A line of a text file as a name and its value; the name is empty if the line does not have this
/// form.
struct NamedValue {
  std::string_view name;
  std::string_view value;
};

/// Splits a line after the name, which ends at a blank, at a colon, or at the column where values
/// begin.
[[nodiscard]] NamedValue namedValue(std::string_view line);

/// Builds records from the lines of a text file.
class RecordText {
 public:
  /// Starts a new record, to which the following fields belong.
  void begin(const AnyLayout& layout);

  /// Sets a field of the record; ignores an unknown name or an empty value. An unknown word for a
  /// code becomes `kUnknownCode`; throws `ReadFailure` with the line if a number is malformed.
  void field(std::string_view name, std::string_view value, std::size_t line);

  [[nodiscard]] bool empty() const { return parts_.empty(); }
  [[nodiscard]] RecordList take() const;

 private:
  struct Part {
    const AnyLayout* layout;
    std::string bytes;
    std::size_t size = 0;  // according to the text file
    std::size_t used = 0;  // up to the last field given
  };
  [[nodiscard]] static std::size_t sizeOfRecord(const Part& part);

  std::vector<Part> parts_;
};

}  // namespace aq::sdf
