#pragma once

#include <aq/spectral/cut_history.h>

#include <optional>
#include <string>
#include <vector>

#include "tools/aqdata/measurement.h"
#include "tools/aqdata/session.h"

namespace aqdata {

/// The names of a run's files; empty for a file that the run lacks.
struct RunFiles {
  std::string history = {};
  std::string map = {};
  std::string geometry = {};

  [[nodiscard]] std::vector<std::string> all() const;
};

/// A run as read: a history and, if given, its map and geometry.
struct Run {
  History history;
  std::optional<MaskingMap> map = {};
  std::optional<Geometry> geometry = {};
};

/// The name of a file next to a history: landing.mask.csv for landing.sth.csv and ".mask.csv".
[[nodiscard]] std::string nextToHistory(const std::string& history, std::string_view ending);

/// Reads a run's files. Throws `Failure`, also for a map that does not fit the history.
[[nodiscard]] Run openRun(const RunFiles& files);

/// Writes a run; the headers of the map and the geometry get the name of the new history. Returns
/// notes on what the history's format cannot hold. Throws `Failure`; if a file exists that may not
/// be replaced, nothing is written.
std::vector<std::string> writeRun(const Session& session, Run& run, const RunFiles& to,
                                  const std::string& from);

/// Adds a comment line to all headers of a run.
void addComment(Run& run, const std::string& line);

/// Writes a history that was read from `from`. Returns notes on what the format cannot hold. Throws
/// `Failure` if a word of the header is unknown, if the records do not all have the same bands
/// without a gap (unless `inColumns`), or if the file cannot be written or may not be replaced.
std::vector<std::string> writeHistory(const Session& session, const History& read,
                                      const std::string& to, const std::string& from,
                                      bool inColumns);

}  // namespace aqdata
