#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <unordered_map>

#include "aq/check/check_file.h"
#include "aq/check/finding.h"
#include "aq/core/export.h"

namespace aq {

/// Finds measurements in an archive that have the same levels: a copy under another name, or a file
/// stored in place of another. Not thread-safe.
class AQ_API SameLevels {
 public:
  /// Reports `path` if it has the same levels as another file seen earlier.
  void see(const std::string& path, const Checked& checked, const FindingSink& report);

 private:
  std::unordered_map<std::uint64_t, std::string> first_;  // the first file, by digest of its levels
};

}  // namespace aq
