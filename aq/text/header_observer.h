#pragma once

#include <cstddef>
#include <functional>
#include <string_view>

namespace aq {

/// A header line as a reader takes it. Valid while it is shown.
struct HeaderLine {
  enum class Use {
    Keyword,   ///< its value is read
    Text,      ///< a comment or other record, kept as it is
    Headings,  ///< the column headings above the data
    Unused,    ///< passed over
  };

  std::size_t number;  ///< from 1
  Use use;
  std::string_view keyword;  ///< that the place of the line stands for; empty for the other uses
  std::string_view text;     ///< as it stands
  std::string_view value;    ///< what is read of a keyword's line, or of a parameter file's comment
  std::size_t fields = 0;    ///< of the value that are read; 0 when it is read as a whole
};

/// Sees every header line that a read takes.
using HeaderObserver = std::function<void(const HeaderLine&)>;

inline void showLine(const HeaderObserver& watch, const HeaderLine& line) {
  if (watch) watch(line);
}

}  // namespace aq
