#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "aq/check/finding.h"
#include "aq/core/export.h"
#include "aq/masking/mask_map.h"
#include "aq/spectral/spectral_time_history.h"

namespace aq {

/// Reads a file and reports what makes its reader fail, what the reader accepts although it is
/// probably wrong, and what is worth knowing. Exceptions from `report` reach the caller. Different
/// threads may check different files at once.
AQ_API void checkFile(const std::string& path, const FindingSink& report);

/// Reports the fixes of a tracking file that a reader with this `RT20Limit` drops. Also reports a
/// failure to read the file.
AQ_API void checkFixes(const std::string& path, std::uint8_t limit, const FindingSink& report);

/// Reports why a masking map does not fit the history that it was made for, called `historyName` in
/// messages. Throws `Overflow` if either has more than 32767 entries.
AQ_API void checkFit(const AQ_SpectralTimeHistory& history, const std::string& historyName,
                     const AQ_MaskMap& map, const FindingSink& report);

/// Reads a history and a masking map and reports where they do not fit each other. Reports nothing
/// if either file cannot be read; `checkFile` reports that.
AQ_API void checkFit(const std::string& historyPath, const std::string& mapPath,
                     const FindingSink& report);

/// What a check returns in addition to its findings.
struct Checked {
  /// A digest of all levels of a history. Empty for other kinds of file, for histories in fixed
  /// columns, for those that cannot be read or have decimal commas, and for those with fewer than 8
  /// levels or no valid one.
  std::optional<std::uint64_t> levels = {};
};

/// Like `checkFile`, but also compares a masking map, positions or a geometry with the files that
/// the header names as sources, if these are in the same folder.
AQ_API Checked checkWithHistory(const std::string& path, const FindingSink& report);

}  // namespace aq
