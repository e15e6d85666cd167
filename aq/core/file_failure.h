#pragma once

#include <cstddef>
#include <string>

#include "aq/core/export.h"

namespace aq {

/// Why a read or a write returned `AQ_DATA_FILE_ERROR`, in words that a user can be shown.
struct AQ_API FileFailure {
  std::string file;       ///< as the caller named it
  std::size_t line = 0;   ///< from 1; 0 for the whole file
  std::size_t field = 0;  ///< from 1; 0 for the whole line
  std::string expected;   ///< as in `a level`
  std::string found;      ///< as in `"6x.2"`: text from the file in quotes, escaped and cut

  /// The failure as one line: `landing.csv, line 24, field 7: expected a level, found "6x.2"`, or,
  /// for an operating system error, `cannot open landing.csv: No such file or directory`.
  [[nodiscard]] std::string message() const;
};

}  // namespace aq
