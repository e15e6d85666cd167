#include <aq/check/check_file.h>
#include <aq/check/mend_text.h>
#include <aq/core/error.h>
#include <aq/core/platform.h>
#include <aq/text/number_text.h>
#include <fmt/format.h>

#include <filesystem>

#include "tools/aqdata/files.h"
#include "tools/aqdata/gzip.h"
#include "tools/aqdata/parallel.h"
#include "tools/aqdata/path.h"
#include "tools/aqdata/program.h"
#include "tools/aqdata/text.h"

namespace aqdata {
namespace {

namespace fs = std::filesystem;

struct FixChoice {
  bool write = false;
  bool noOriginal = false;
};

/// What was done with a file, and what is still wrong with it.
struct FixOutcome {
  aq::Mended mended = {};
  std::string output = {};    // empty when nothing was written
  std::string original = {};  // where the original is kept; empty if it is not
  std::vector<std::string> errors = {};
  std::size_t warnings = 0;
  std::string failure = {};

  [[nodiscard]] bool isSound() const { return mended.left.empty() && errors.empty(); }
};

std::string bytesOf(const std::string& path) {
  expectFile(path);
  expectOpens(path);
  aq::platform::InputFile file(path);
  std::string bytes;
  std::string block(std::size_t{256} * 1024, '\0');
  while (const std::size_t got = file.read({block.data(), block.size()})) {
    bytes.append(block, 0, got);
  }
  return bytes;
}

/// The name of a file after unpacking.
std::string unpackedName(const std::string& path) {
  constexpr std::string_view kEnding = ".gz";
  const bool packed = aq::upperCased(path).ends_with(".GZ");
  return packed ? path.substr(0, path.size() - kEnding.size()) : path;
}

void writeBytes(const std::string& path, std::string_view bytes) {
  try {
    aq::platform::replaceFile(path, bytes);
  } catch (const aq::platform::SystemError& error) {
    throw refusal(path, error);
  }
}

/// Writes the original next to the file, with the file's date, and returns its name. Throws
/// `Failure` if an original is already there.
std::string keepOriginal(const std::string& path, std::string_view bytes) {
  std::string original = path + ".orig";
  std::error_code error;
  if (fs::exists(pathOf(original), error)) {
    throw Failure(
        fmt::format("{}: already exists; --no-orig keeps no original", aq::escaped(original)));
  }
  writeBytes(original, bytes);
  fs::last_write_time(pathOf(original), fs::last_write_time(pathOf(path), error), error);
  return original;
}

/// Replaces the file with the mended text and, without --no-orig, keeps the original next to it.
/// If the file's name ends in ".gz", writes to a new file without that ending instead.
void writeInPlace(const Session& session, const std::string& path, std::string_view bytes,
                  const FixChoice& choice, FixOutcome& outcome) {
  const std::string place = unpackedName(path);
  if (place != path) {  // the packed file stays
    expectFree(session, place);
  } else if (!choice.noOriginal) {
    outcome.original = keepOriginal(path, bytes);
  }
  try {
    writeBytes(place, outcome.mended.text);
  } catch (const Failure&) {
    std::error_code error;
    if (!outcome.original.empty()) fs::remove(pathOf(outcome.original), error);
    throw;
  }
  outcome.output = place;
}

/// Collects the errors that a file still has, and counts its warnings.
void seeTheRest(const std::string& path, FixOutcome& outcome) {
  aq::checkFile(path, [&](const aq::Finding& finding) {
    if (finding.kind.severity == aq::Severity::Warning) ++outcome.warnings;
    if (finding.kind.severity != aq::Severity::Error) return;
    const std::size_t line = finding.place.line;
    outcome.errors.push_back((line == 0 ? "" : fmt::format("line {}: ", line)) + finding.message);
  });
}

FixOutcome fixFile(const Session& session, const std::string& path, const std::string& place,
                   const FixChoice& choice) {
  FixOutcome outcome;
  const std::string bytes = bytesOf(path);
  const std::string name = aq::fileInformation()->recordedName(path);
  const bool packed = isGzip(bytes);
  outcome.mended =
      packed ? aq::mendText(unpacked(bytes, path), name, {"gzip"}) : aq::mendText(bytes, name);
  const bool changed = !outcome.mended.done.empty();
  if (choice.write && !place.empty()) {
    expectNoInput(place, {path});
    expectFree(session, place);
    writeBytes(place, outcome.mended.text);
    outcome.output = place;
  } else if (choice.write && changed) {
    writeInPlace(session, path, bytes, choice, outcome);
  }
  if (!outcome.output.empty() || !changed) {
    seeTheRest(outcome.output.empty() ? path : outcome.output, outcome);
  }
  outcome.mended.text.clear();
  return outcome;
}

Json documentOf(const std::string& file, const FixOutcome& outcome) {
  return {{"file", file},
          {"mends", outcome.mended.done},
          {"left", outcome.mended.left},
          {"output", outcome.output.empty() ? Json() : Json(outcome.output)},
          {"original", outcome.original.empty() ? Json() : Json(outcome.original)},
          {"errors", outcome.errors},
          {"warnings", outcome.warnings}};
}

/// Reports what was done with a file, and what is left to do.
void tellOutcome(Session& session, const std::string& file, const FixOutcome& outcome) {
  const std::string name = aq::escaped(file);
  const bool written = !outcome.output.empty();
  if (!outcome.mended.done.empty()) {
    std::string line = fmt::format("{}: {} {}", name, written ? "mended" : "would mend",
                                   fmt::join(outcome.mended.done, ", "));
    if (!outcome.original.empty()) {
      line += fmt::format("; the original is {}", aq::escaped(outcome.original));
    }
    session.print(line + '\n');
  }
  for (const std::string& left : outcome.mended.left) {
    session.print(fmt::format("{}: left unchanged: {}\n", name, left));
  }
  for (const std::string& error : outcome.errors) {
    session.print(fmt::format("{}: {}\n", name, error));
  }
  if (outcome.warnings != 0) {
    session.print(fmt::format("{}: {}, which aqdata check lists\n", name,
                              counted(outcome.warnings, "warning")));
  }
}

void fix(Session& session, const FixChoice& choice) {
  if (!session.output.empty() && !choice.write) {
    throw Failure("-o needs --write, without which nothing is written");
  }
  if (!choice.write && choice.noOriginal) {
    throw Failure("--no-orig needs --write");
  }
  const std::vector<std::string> files = chosenFiles(session, {".CSV.GZ", ".SPC.GZ"});
  std::optional<OutputPlaces> places;
  if (!session.output.empty()) places.emplace(session);
  std::vector<std::string> outputs(files.size());
  for (std::size_t i = 0; places && i < files.size(); ++i) {
    outputs[i] = unpackedName(places->of(files[i]));
  }
  std::size_t mended = 0;
  std::size_t done = 0;
  inOrder(
      files.size(), session.jobs,
      [&](std::size_t i) {
        try {
          return fixFile(session, files[i], outputs[i], choice);
        } catch (const std::exception& error) {
          FixOutcome outcome;
          outcome.failure = failureText(files[i], error);
          return outcome;
        }
      },
      [&](std::size_t i, const FixOutcome& outcome) {
        session.progress(i + 1, files.size());
        if (!outcome.failure.empty()) return session.complain(outcome.failure, files[i]);
        ++done;
        if (!outcome.mended.done.empty()) ++mended;
        const bool toDo = !outcome.mended.done.empty() && outcome.output.empty();
        if (toDo || !outcome.isSound()) session.end(kFindings);
        if (session.json) return session.printDocument(documentOf(files[i], outcome));
        tellOutcome(session, files[i], outcome);
      });
  session.tell(fmt::format("{}: {} {}, {} unchanged", counted(done, "file"), mended,
                           choice.write ? "mended" : "to mend", done - mended));
}

}  // namespace

void addFix(CLI::App& program, Session& session) {
  const auto choice = std::make_shared<FixChoice>();
  CLI::App* const command = addCommand(
      program, session, "fix", "Undo what other programs did to the text of files",
      "Undoes only what is certain: gzip, UTF-16, byte order marks, carriage returns as\n"
      "line endings, semicolons, tabs, quotes and padding added by spreadsheets, blank\n"
      "lines, and decimal commas. If the format allows comments, one says what was\n"
      "changed. Anything uncertain is only reported. Without --write, prints what would\n"
      "change and exits with status 1 if anything would. OUT receives every file,\n"
      "including those that need no change.\n\n"
      "Examples:\n"
      "  aqdata fix .\n"
      "  aqdata fix fly-over.sth.csv --write -o mended.sth.csv\n",
      [&session, choice] { fix(session, *choice); });
  addFiles(*command, session);
  command->add_flag("--write", choice->write, "Write the changes, in place or to OUT");
  command->add_flag("--no-orig", choice->noOriginal, "Do not keep the original as FILE.orig");
  addOutputFile(*command, session, "The file or folder to write", false);
  addJobs(*command, session);
}

}  // namespace aqdata
