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

/// A failure, in words for the user. Ends the work on one file, or on all.
class Failure : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

/// The tool's exit status.
enum Status { kFine = 0, kFindings = 1, kCouldNot = 2 };

/// State that all commands share: the user's choices, the output, and the exit status.
class Session {
 public:
  bool json = false;
  bool quiet = false;
  std::string colour = "auto";
  int jobs = 2;
  std::vector<std::string> files;  ///< as given
  std::string output;              ///< the file or folder to write
  bool force = false;              ///< whether an existing file may be replaced
  std::map<const CLI::Option*, std::vector<std::string>> words =
      {};  ///< the words that each option accepts

  [[nodiscard]] int status() const { return status_; }

  /// Sets the exit status, unless a more severe one is already set.
  void end(Status status);

  /// Writes to standard output. A write that fails ends the program.
  void print(std::string_view text);

  /// Flushes standard output; a failure also ends the program. Call it before the program ends.
  void finish();

  /// Prints the name of the file whose output follows, if there are several and --json is not
  /// given.
  void title(const std::string& file);

  /// Writes a document as one line.
  void printDocument(const Json& document);

  /// Whether the output is a device, a pipe or one of the program's own streams, such as
  /// /dev/stdout.
  [[nodiscard]] bool intoStream() const;

  /// Reports on standard output what was done, unless the output is a stream or the user gave
  /// --quiet or --json.
  void tell(std::string_view text);

  /// Like `tell`, reports what was written to the output; with --json, prints a document that names
  /// the output instead, unless the output is a stream.
  void wrote(std::string_view what);

  /// Reports on standard error what went wrong and, with --json, also in a document, which names
  /// `file` unless that is empty. Sets the status to failure.
  void complain(std::string_view text, const std::string& file = {});

  /// Shows the progress of a long run on a terminal; removes it when `done` reaches `total`.
  void progress(std::size_t done, std::size_t total);

  [[nodiscard]] bool colourful() const;

  // Text in a style or colour; unchanged without colours.
  [[nodiscard]] std::string strong(std::string_view text) const { return painted("1", text); }
  [[nodiscard]] std::string faint(std::string_view text) const { return painted("2", text); }
  [[nodiscard]] std::string painted(std::string_view code, std::string_view text) const;

 private:
  void clearProgress();
  [[noreturn]] static void failOutput();

  int status_ = kFine;
  std::size_t shown_ = 0;  // the progress last shown, in percent
  bool progressing_ = false;
};

/// A document as one line. Bytes that are not UTF-8 become U+FFFD.
[[nodiscard]] std::string lineOf(const Json& document);

/// Runs `work`, and reports its exceptions as failures of `path`.
void onFile(Session& session, const std::string& path, const std::function<void()>& work);

/// The message for an exception that work on `path` threw.
[[nodiscard]] std::string failureText(const std::string& path, const std::exception& error);

/// Adds the options that every command has.
void addOutputOptions(CLI::App& command, Session& session);

// Add arguments and options that several commands have.
void addFiles(CLI::App& command, Session& session);
void addFile(CLI::App& command, std::string& file, const char* name, const char* what);
void addJobs(CLI::App& command, Session& session);
void addOutputFile(CLI::App& command, Session& session, const char* what, bool needed = true);

/// Restricts an option to these words, regardless of case. Shells offer the words as completions.
void addWords(Session& session, CLI::Option& option, std::vector<std::string> words);

// Check an option's text. Return why it is not the expected number, or an empty string if it is.
std::string finiteNumber(const std::string& text);
std::string numberFromZero(const std::string& text);
using Check = std::function<std::string(const std::string&)>;
[[nodiscard]] Check wholeNumber(std::int32_t lowest, std::int32_t highest);

// Add the commands.
void addAnalyzer(CLI::App& program, Session& session);
void addCat(CLI::App& program, Session& session);
void addCheck(CLI::App& program, Session& session);
void addCompletion(CLI::App& program, Session& session);
void addConvert(CLI::App& program, Session& session);
void addCut(CLI::App& program, Session& session);
void addDiff(CLI::App& program, Session& session);
void addExplain(CLI::App& program, Session& session);
void addFix(CLI::App& program, Session& session);
void addGeometry(CLI::App& program, Session& session);
void addHead(CLI::App& program, Session& session);
void addHelp(CLI::App& program, Session& session);
void addInfo(CLI::App& program, Session& session);
void addJoin(CLI::App& program, Session& session);
void addLgb(CLI::App& program, Session& session);
void addManual(CLI::App& program, Session& session);
void addMask(CLI::App& program, Session& session);
void addMetrics(CLI::App& program, Session& session);
void addPlot(CLI::App& program, Session& session);
void addReport(CLI::App& program, Session& session);
void addShow(CLI::App& program, Session& session);
void addStamp(CLI::App& program, Session& session);
void addTrack(CLI::App& program, Session& session);

}  // namespace aqdata
