#pragma once

#include <aq/core/platform.h>
#include <aq/files/late_times.h>
#include <aq/text/call_file.h>

#include <map>
#include <string>
#include <string_view>
#include <vector>

#include "tools/aqdata/measurement.h"
#include "tools/aqdata/session.h"

namespace aqdata {

/// The files that the user's arguments name. A pattern selects the files and folders that match it.
/// A folder selects all measurement files below it: those that end in ".csv", ignoring case, or are
/// of a known kind, except the originals that `fix` keeps. It also selects files whose names end in
/// one of `more` (in capitals), ignoring case. Skips hidden files and folders in it, and the
/// session's output folder. A folder is visited once, even if several links lead to it. Complains
/// about arguments that select no file.
[[nodiscard]] std::vector<std::string> chosenFiles(Session& session,
                                                   const std::vector<std::string_view>& more = {});

/// The failure for a file to which the operating system refuses access, with the system's reason.
[[nodiscard]] Failure refusal(const std::string& path, const aq::platform::SystemError& error);

/// Throws `Failure`, with the system's reason, for a file that cannot be opened.
void expectOpens(const std::string& path);

/// Throws `Failure` if the session's output has an extension but none of these endings, or is one
/// of the `inputs`. A name with the ending of a particular format, such as "x.mask.csv", does not
/// count as ending in ".csv".
void expectOutput(const Session& session, const std::vector<std::string_view>& endings,
                  const std::vector<std::string>& inputs);

/// Throws `Failure` if the name has an extension but none of these endings, like `expectOutput`.
void expectEnding(const std::string& path, const std::vector<std::string_view>& endings);

/// Throws `Failure` if `path` is one of the inputs.
void expectNoInput(const std::string& path, const std::vector<std::string>& inputs);

/// Throws `Failure` if `path` is an existing file and the user did not give --force.
void expectFree(const Session& session, const std::string& path);

/// The name of the session's output, for a file class to write. Throws `Failure` if it exists and
/// may not be replaced.
[[nodiscard]] std::string outputPlace(const Session& session);

/// Chooses the output of each file. If the user named a single file, the session's output is the
/// file to write, unless it is an existing folder or ends in a slash. Otherwise it is a folder: a
/// file that the user named keeps its name in it, and a file found in a given folder keeps its path
/// below that folder.
class OutputPlaces {
 public:
  explicit OutputPlaces(const Session& session);

  /// The output of a file; creates the folders that lead to it. Throws `Failure` if another file
  /// already has the same output, or if a folder cannot be created.
  [[nodiscard]] std::string of(const std::string& file);

 private:
  const Session& session_;
  bool inFolder_;
  std::map<std::string, std::string> taken_ = {};  // maps each output to its input
};

/// Writes a header and a model with a file class. Keeps the dates of source files in the header;
/// times that would lose their fraction are rounded up to the next second.
template <class File, class Header, class Model>
void writeAt(const std::string& place, Header& header, Model& model) {
  if constexpr (requires { aq::roundLateTimes(model); }) aq::roundLateTimes(model);
  File file;
  file.fileInformation(aq::keepingFileInformation());
  expectGood(aq::writeFrom(file, place, header, model), file);
}

/// Like `writeAt`, but writes to the session's output.
template <class File, class Header, class Model>
void writeOutput(const Session& session, Header& header, Model& model) {
  writeAt<File>(outputPlace(session), header, model);
}

/// Writes these lines to the session's output.
void writeLines(const Session& session, const std::vector<std::string>& lines);

}  // namespace aqdata
