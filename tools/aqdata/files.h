#pragma once

#include <aq/files/late_times.h>
#include <aq/text/call_file.h>

#include <string>
#include <string_view>
#include <vector>

#include "tools/aqdata/measurement.h"
#include "tools/aqdata/session.h"

namespace aqdata {

/// The files that the user's arguments stand for: a folder for the measurement files in it and
/// below, that is those whose name ends in ".csv", small or large, or whose kind is known, without
/// hidden ones; a pattern for what it matches; each file and each folder once, whatever links lead
/// to it. Complains about what is not there.
[[nodiscard]] std::vector<std::string> chosenFiles(Session& session);

/// Throws `Failure`, with the system's reason, for a file that cannot be opened.
void expectOpens(const std::string& path);

/// Throws `Failure` unless the session's output has a name without an extension or one with one of
/// these, ".csv" being none of those that another kind of file has, and is none of the `inputs`.
void expectOutput(const Session& session, const std::vector<std::string_view>& endings,
                  const std::vector<std::string>& inputs);

/// The session's output, for a file class to write. Throws `Failure` when it is there and may not
/// be replaced.
[[nodiscard]] std::string outputPlace(const Session& session);

/// Writes a header and a model there by a file class. Source files keep the dates that the header
/// has for them; times late in a second are written as the next one.
template <class File, class Header, class Model>
void writeOutput(const Session& session, Header& header, Model& model) {
  if constexpr (requires { aq::roundLateTimes(model); }) aq::roundLateTimes(model);
  File file;
  file.fileInformation(aq::keepingFileInformation());
  expectGood(aq::writeFrom(file, outputPlace(session), header, model), file);
}

/// Writes a file of these lines there.
void writeLines(const Session& session, const std::vector<std::string>& lines);

}  // namespace aqdata
