#pragma once

#include <CLI/CLI.hpp>
#include <cstdint>
#include <functional>
#include <map>
#include <nlohmann/json.hpp>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

namespace aqdata {

using Json = nlohmann::ordered_json;

/// What could not be done, in the user's words. Ends the work on one file, or on all.
class Failure : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

/// How a run ended, for the shell.
enum Status { kFine = 0, kFindings = 1, kCouldNot = 2 };

/// What all commands share: what the user chose, where text goes, and how the run ends.
class Session {
 public:
  bool json = false;
  bool quiet = false;
  std::string colour = "auto";
  int jobs = 2;
  std::vector<std::string> files;  ///< as given
  std::string output;              ///< the file to write
  bool force = false;              ///< replaces a file that is there
  std::map<const CLI::Option*, std::vector<std::string>> words = {};  ///< that options take

  [[nodiscard]] int status() const { return status_; }

  /// The worst counts.
  void end(Status status);

  /// Writes to standard output. A write that fails ends the program.
  void print(std::string_view text);

  /// To be called at the end: what is still on its way to standard output counts too.
  void finish();

  /// Says whose output follows, where there are several files.
  void title(const std::string& file);

  /// Writes one line that holds the document.
  void printDocument(const Json& document);

  /// Whether the output is a device or one of the program's own streams, as /dev/stdout.
  [[nodiscard]] bool intoStream() const;

  /// Says on standard output what was done, unless that is taken by data or unwanted.
  void tell(std::string_view text);

  /// Says that the output is written, and what of, or gives a document where those are wanted.
  void wrote(std::string_view what);

  /// Says on standard error what went wrong, with `file` if it is one file of several, and in a
  /// document where those are wanted; the run has failed then.
  void complain(std::string_view text, const std::string& file = {});

  /// Shows on a terminal how far a long run is; `total` of `total` takes it away.
  void progress(std::size_t done, std::size_t total);

  [[nodiscard]] bool colourful() const;

  // Text in a colour, where there are colours.
  [[nodiscard]] std::string strong(std::string_view text) const { return painted("1", text); }
  [[nodiscard]] std::string faint(std::string_view text) const { return painted("2", text); }
  [[nodiscard]] std::string painted(std::string_view code, std::string_view text) const;

 private:
  void clearProgress();
  [[noreturn]] static void failOutput();

  int status_ = kFine;
  std::size_t shown_ = 0;  // of the progress, in hundredths
  bool progressing_ = false;
};

/// A document in one line. Bytes that are no UTF-8 become U+FFFD.
[[nodiscard]] std::string lineOf(const Json& document);

/// Runs `work` and turns what it throws into a complaint about `path`.
void onFile(Session& session, const std::string& path, const std::function<void()>& work);

/// The message of a failure to work on `path`.
[[nodiscard]] std::string failureText(const std::string& path, const std::exception& error);

/// The options that every command has.
void addOutputOptions(CLI::App& command, Session& session);

// Options that several commands have.
void addFiles(CLI::App& command, Session& session);
void addFile(CLI::App& command, std::string& file, const char* name, const char* what);
void addJobs(CLI::App& command, Session& session);
void addOutputFile(CLI::App& command, Session& session, const char* what, bool needed = true);

/// Lets an option take these words alone, in any case, several with commas if it takes several;
/// shells offer them.
void addWords(Session& session, CLI::Option& option, std::vector<std::string> words);

// Checks of an option's text: why it is no such number; empty when it is one.
std::string finiteNumber(const std::string& text);
using Check = std::function<std::string(const std::string&)>;
[[nodiscard]] Check wholeNumber(std::int32_t lowest, std::int32_t highest);

// The commands, one a file in commands/.
void addAnalyzer(CLI::App& program, Session& session);
void addCat(CLI::App& program, Session& session);
void addCheck(CLI::App& program, Session& session);
void addCompletion(CLI::App& program, Session& session);
void addConvert(CLI::App& program, Session& session);
void addDiff(CLI::App& program, Session& session);
void addExplain(CLI::App& program, Session& session);
void addGeometry(CLI::App& program, Session& session);
void addHead(CLI::App& program, Session& session);
void addHelp(CLI::App& program, Session& session);
void addInfo(CLI::App& program, Session& session);
void addLgb(CLI::App& program, Session& session);
void addManual(CLI::App& program, Session& session);
void addMask(CLI::App& program, Session& session);
void addMetrics(CLI::App& program, Session& session);
void addShow(CLI::App& program, Session& session);
void addStamp(CLI::App& program, Session& session);
void addTrack(CLI::App& program, Session& session);

}  // namespace aqdata
