#pragma once

#include <aq/check/check_file.h>

#include <string>
#include <vector>

#include "tools/aqdata/session.h"

namespace aqdata::report {

/// What the user says of the files that go with a history. An empty name stands for the file next
/// to it, unless `alone`.
struct RunChoice {
  std::string map;
  std::string ambient;
  std::string positions;
  std::string microphone;
  std::string geometry;
  std::string celsius;  ///< the temperature for a geometry to be computed; empty for none
  bool alone = false;   ///< takes nothing that is next to a history

  /// Whether a file is named that goes with one history alone.
  [[nodiscard]] bool isOfOneRun() const;
};

/// A run as the page has it.
struct RunData {
  Json summary = {};                         ///< its line in the table of all runs
  Json document = {};                        ///< its section
  aq::Checked checked = {};                  ///< of the history
  std::vector<std::string> complaints = {};  ///< about files that the page goes without
  std::string failure = {};                  ///< why the history did not read
};

/// Reads a history and what goes with it, and computes what the page shows. Throws `Failure` for a
/// file that the user named and that does not serve.
[[nodiscard]] RunData runData(const std::string& history, const RunChoice& choice);

/// Adds a finding that only shows among several runs.
void addFinding(RunData& run, const std::string& file, const aq::Finding& finding);

}  // namespace aqdata::report
