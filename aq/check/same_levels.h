#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <unordered_map>

#include "aq/check/check_file.h"
#include "aq/check/finding.h"
#include "aq/core/export.h"

namespace aq {

/// Finds measurements of an archive that have the same levels: a copy under another name, or one
/// stored in place of another. Not for several threads at once.
class AQ_API SameLevels {
 public:
  /// Reports that `path` has the levels of a file that was seen before.
  void see(const std::string& path, const Checked& checked, const FindingSink& report);

 private:
  std::unordered_map<std::uint64_t, std::string> first_;  // the first file, by its levels
};

}  // namespace aq
