#pragma once

#include <aq/files/late_times.h>
#include <aq/text/call_file.h>

#include <string>
#include <string_view>
#include <vector>

#include "tools/aqdata/measurement.h"
#include "tools/aqdata/session.h"

namespace aqdata {

/// The files that the user's arguments name: for a folder, the measurement files in and below it,
/// which are those whose name ends in ".csv" in any case or whose kind is known, except hidden
/// ones; for a pattern, what it matches. Each file and folder appears once, even if several links
/// lead to it. Complains about what does not exist.
[[nodiscard]] std::vector<std::string> chosenFiles(Session& session);

/// Throws `Failure`, with the system's reason, for a file that cannot be opened.
void expectOpens(const std::string& path);

/// Throws `Failure` unless the name of the session's output has no extension or one of these
/// (".csv" only without the ending of another kind of file), and it is none of the `inputs`.
void expectOutput(const Session& session, const std::vector<std::string_view>& endings,
                  const std::vector<std::string>& inputs);

/// The session's output, for a file class to write. Throws `Failure` if it exists and may not be
/// replaced.
[[nodiscard]] std::string outputPlace(const Session& session);

/// Writes a header and a model to it with a file class. Keeps the header's dates of source files;
/// writes times late in a second as the next second.
template <class File, class Header, class Model>
void writeOutput(const Session& session, Header& header, Model& model) {
  if constexpr (requires { aq::roundLateTimes(model); }) aq::roundLateTimes(model);
  File file;
  file.fileInformation(aq::keepingFileInformation());
  expectGood(aq::writeFrom(file, outputPlace(session), header, model), file);
}

/// Writes these lines to it.
void writeLines(const Session& session, const std::vector<std::string>& lines);

}  // namespace aqdata
