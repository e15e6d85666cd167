#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "aq/check/finding.h"
#include "aq/core/export.h"
#include "aq/masking/mask_map.h"
#include "aq/spectral/spectral_time_history.h"

namespace aq {

/// Reads a file and reports what makes its reader fail, and what the reader lets pass but a person
/// should know. What `report` throws goes to the caller. Different files may be checked at once in
/// different threads.
AQ_API void checkFile(const std::string& path, const FindingSink& report);

/// Reports the fixes of a tracking file that a reader with this `RT20Limit` drops.
AQ_API void checkFixes(const std::string& path, std::uint8_t limit, const FindingSink& report);

/// Reports why a masking map does not fit the history that it was made for, which messages call
/// `historyName`.
AQ_API void checkFit(const AQ_SpectralTimeHistory& history, const std::string& historyName,
                     const AQ_MaskMap& map, const FindingSink& report);

/// As above, of files. Says nothing of a file that does not read: `checkFile` does.
AQ_API void checkFit(const std::string& historyPath, const std::string& mapPath,
                     const FindingSink& report);

/// What a check keeps of a file beyond its findings.
struct Checked {
  std::optional<std::uint64_t> levels = {};  ///< a digest of all levels of a history
};

/// As `checkFile`; a masking map is also compared with the history that it names, a geometry with
/// the history, positions and microphone, when they are files beside it.
AQ_API Checked checkWithHistory(const std::string& path, const FindingSink& report);

}  // namespace aq
