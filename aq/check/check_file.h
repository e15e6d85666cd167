#pragma once

#include <string>

#include "aq/check/finding.h"
#include "aq/core/export.h"

namespace aq {

/// Reads a file and reports what makes its reader fail, and what the reader lets pass but a person
/// should know. What `report` throws goes to the caller. Different files may be checked at once in
/// different threads.
AQ_API void checkFile(const std::string& path, const FindingSink& report);

/// Reports why a masking map does not fit the history that it was made for. Says nothing of a file
/// that does not read: `checkFile` does.
AQ_API void checkFit(const std::string& historyPath, const std::string& mapPath,
                     const FindingSink& report);

/// Where the history that a masking map names as its source should be: beside the map. Empty when
/// the map does not read or names none.
[[nodiscard]] AQ_API std::string historyOfMap(const std::string& mapPath);

}  // namespace aq
