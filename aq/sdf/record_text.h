#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include "aq/sdf/record_list.h"

namespace aq::sdf {

/// A line of a text as a name and its value; the name is empty where there is no such line.
struct NamedValue {
  std::string_view name;
  std::string_view value;
};

/// Divides a line at its first two blanks, at a colon, or where values have their column.
[[nodiscard]] NamedValue namedValue(std::string_view line);

/// Puts records together from the lines of a text.
class RecordText {
 public:
  /// The fields that follow are those of a new record.
  void begin(const AnyLayout& layout);

  /// A field of the record; a name that it does not have is passed over. Fails at the line when the
  /// value is none of the field's kind.
  void field(std::string_view name, std::string_view value, std::size_t line);

  [[nodiscard]] bool empty() const { return parts_.empty(); }
  [[nodiscard]] RecordList take() const;

 private:
  struct Part {
    const AnyLayout* layout;
    std::string bytes;
    std::size_t size = 0;  // as the text says
    std::size_t used = 0;  // up to the last field that it gives
  };
  [[nodiscard]] static std::size_t sizeOfRecord(const Part& part);

  std::vector<Part> parts_;
};

}  // namespace aq::sdf
