#pragma once

#include <aq/check/check_file.h>

#include <string>
#include <vector>

#include "tools/aqdata/session.h"

namespace aqdata::report {

/// The companion files that the user chose for a history. An empty name means the file next to the
/// history, unless `alone` is set.
struct RunChoice {
  std::string map;
  std::string ambient;
  std::string positions;
  std::string microphone;
  std::string geometry;
  std::string celsius;  ///< the temperature for computing a missing geometry; empty for none
  bool alone = false;   ///< uses no files next to the history

  /// Whether the user named a file that belongs to a single history.
  [[nodiscard]] bool isOfOneRun() const;
};

/// A run in the form that the page reads.
struct RunData {
  Json summary = {};                         ///< its line in the table of all runs
  Json document = {};                        ///< the data of its section
  aq::Checked checked = {};                  ///< a digest of the history's levels
  std::vector<std::string> complaints = {};  ///< about files, metrics or geometry left out
  std::string failure = {};                  ///< why the run could not be read
};

/// Reads a history and its companion files, and computes what the page shows. Throws `Failure` if
/// the history, or another file that the user named, cannot be used.
[[nodiscard]] RunData runData(const std::string& history, const RunChoice& choice);

/// Adds a finding that appears only when runs are compared.
void addFinding(RunData& run, const std::string& file, const aq::Finding& finding);

}  // namespace aqdata::report
