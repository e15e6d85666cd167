#pragma once

#include <cstddef>
#include <functional>
#include <string_view>

namespace aq {

/// A header line as a reader takes it. Valid during the call only.
struct HeaderLine {
  enum class Use {
    Keyword,   ///< its value is read
    Text,      ///< a comment or other record, kept unchanged
    Headings,  ///< the column headings above the data
    Unused,    ///< skipped
  };

  std::size_t number;  ///< from 1
  Use use;
  std::string_view keyword;  ///< that belongs to the place of the line; empty for the other uses
  std::string_view text;     ///< unchanged
  std::string_view
      value;  ///< the part that is read of a keyword's line, or of a comment of a parameter file
  std::size_t fields = 0;  ///< of the value that are read; 0 when the value is read as a whole
};

/// Sees every header line that a read takes.
using HeaderObserver = std::function<void(const HeaderLine&)>;

inline void showLine(const HeaderObserver& watch, const HeaderLine& line) {
  if (watch) watch(line);
}

}  // namespace aq
