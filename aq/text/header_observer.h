#pragma once

#include <cstddef>
#include <functional>
#include <string_view>

namespace aq {

/// A header line taken by a reader. Valid only during the call to the observer.
struct HeaderLine {
  enum class Use {
    Keyword,   ///< its value is read
    Text,      ///< a comment or another line kept as text
    Headings,  ///< the column headings above the data
    Unused,    ///< skipped
  };

  std::size_t number;  ///< from 1
  Use use;
  std::string_view keyword;  ///< the keyword that belongs on this line; empty for other uses
  std::string_view text;     ///< the line, unchanged
  std::string_view
      value;  ///< the part read after the keyword; in a parameter file also a whole comment line
  std::size_t fields = 0;  ///< how many fields of the value are read; 0 if it is read as a whole
};

/// Called with every header line that a reader takes.
using HeaderObserver = std::function<void(const HeaderLine&)>;

inline void showLine(const HeaderObserver& watch, const HeaderLine& line) {
  if (watch) watch(line);
}

}  // namespace aq
