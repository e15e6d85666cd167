#include <aq/check/same_levels.h>
#include <aq/files/file_kind.h>
#include <fmt/format.h>

#include <algorithm>
#include <map>

#include "tools/aqdata/files.h"
#include "tools/aqdata/findings.h"
#include "tools/aqdata/measurement.h"
#include "tools/aqdata/parallel.h"
#include "tools/aqdata/program.h"
#include "tools/aqdata/text.h"

namespace aqdata {
namespace {

struct CheckChoice {
  std::vector<std::string> only;
  std::vector<std::string> ignore;
  std::string severity = "note";  // the lowest severity to report
  bool strict = false;
  bool summary = false;
  std::size_t limit = 20;  // how many findings of one kind are listed per file

  [[nodiscard]] bool wants(const aq::FindingKind& kind) const {
    const auto has = [&kind](const auto& names) {
      return std::find(names.begin(), names.end(), kind.name) != names.end();
    };
    return (only.empty() || has(only)) && !has(ignore) && kind.severity >= least();
  }

  [[nodiscard]] aq::Severity least() const {
    for (const auto known : {aq::Severity::Warning, aq::Severity::Error}) {
      if (severity == aq::severityText(known)) return known;
    }
    return aq::Severity::Note;
  }
};

/// Those findings of one file that the user's options select.
struct Report : FileFindings {
  aq::Checked checked = {};
  std::string failure = {};  // why the file could not be checked

  void take(const aq::Finding& finding, const CheckChoice& choice) {
    if (choice.wants(finding.kind)) FileFindings::take(finding, choice.limit);
  }
};

Report reportOf(const std::string& file, const CheckChoice& choice) {
  Report report;
  try {
    expectOpens(file);
    report.checked = aq::checkWithHistory(
        file, [&](const aq::Finding& finding) { report.take(finding, choice); });
  } catch (const Failure& refused) {
    report.failure = refused.what();
  }
  return report;
}

const char* colourOf(aq::Severity severity) {
  switch (severity) {
    case aq::Severity::Error: return "1;31";
    case aq::Severity::Warning: return "33";
    case aq::Severity::Note: break;
  }
  return "36";
}

void print(Session& session, const std::string& file, const Report& report) {
  const auto print = [&](const aq::FindingKind& kind, const std::string& place,
                         const std::string& message) {
    session.print(
        fmt::format("{}{}: {}: {} {}\n", aq::escaped(file), place,
                    session.painted(colourOf(kind.severity), aq::severityText(kind.severity)),
                    message, session.faint(fmt::format("[{}]", kind.name))));
  };
  for (const aq::Finding* const finding : report.listed()) {
    print(finding->kind, placeText(finding->place), finding->message);
  }
  for (const Report::Count& found : report.counts) {
    if (found.count == found.kept) continue;
    print(*found.kind, "", fmt::format("{} more", found.count - found.kept));
  }
}

void printJson(Session& session, const std::string& file, const Report& report) {
  Json findings = Json::array();
  Json counts = Json::object();
  for (const Report::Count& found : report.counts) {
    counts[std::string(found.kind->name)] = found.count;
  }
  for (const aq::Finding* const finding : report.listed()) {
    findings.push_back(findingJson(*finding));
  }
  session.printDocument(Json{{"file", file},
                             {"kind", aq::kindText(aq::kindOfFile(file))},
                             {"findings", std::move(findings)},
                             {"counts", std::move(counts)}});
}

/// Counts the findings of all files and sets the session's status.
struct Summary {
  std::size_t files = 0;
  std::size_t sound = 0;  // files without a selected finding
  std::map<aq::Severity, std::size_t> counts = {};
  struct Found {
    std::size_t count = 0;
    std::size_t files = 0;
  };
  std::map<std::string_view, Found> kinds = {};

  void add(const Report& report, const CheckChoice& choice, Session& session) {
    ++files;
    if (report.counts.empty()) ++sound;
    for (const Report::Count& found : report.counts) {
      counts[found.kind->severity] += found.count;
      kinds[found.kind->name].count += found.count;
      ++kinds[found.kind->name].files;
      if (choice.strict || found.kind->severity != aq::Severity::Note) session.end(kFindings);
    }
  }

  /// Prints a table with one line per kind of finding or, with --json, one document.
  void print(Session& session) const {
    Table table({{"finding"}, {"severity"}, {"count", true}, {"files", true}, {"meaning"}});
    Json findings = Json::object();
    for (const aq::FindingKind& kind : aq::findingKinds()) {
      const auto found = kinds.find(kind.name);
      if (found == kinds.end()) continue;
      const auto [count, in] = found->second;
      findings[std::string(kind.name)] = {
          {"severity", aq::severityText(kind.severity)}, {"count", count}, {"files", in}};
      table.add({std::string(kind.name), std::string(aq::severityText(kind.severity)),
                 std::to_string(count), std::to_string(in), std::string(kind.meaning)});
    }
    if (session.json) {
      session.printDocument(
          Json{{"files", files}, {"sound", sound}, {"findings", std::move(findings)}});
    } else if (!kinds.empty()) {
      table.print(session);
    }
  }

  [[nodiscard]] std::string text() {
    return fmt::format("{} checked, {} without findings: {}, {}, {}", counted(files, "file"), sound,
                       counted(counts[aq::Severity::Error], "error"),
                       counted(counts[aq::Severity::Warning], "warning"),
                       counted(counts[aq::Severity::Note], "note"));
  }
};

void check(Session& session, const CheckChoice& choice) {
  const std::vector<std::string> files = chosenFiles(session);
  Summary summary;
  aq::SameLevels same;
  inOrder(
      files.size(), session.jobs, [&](std::size_t i) { return reportOf(files[i], choice); },
      [&](std::size_t i, Report& report) {
        session.progress(i + 1, files.size());
        if (!report.failure.empty()) return session.complain(report.failure, files[i]);
        same.see(files[i], report.checked,
                 [&](const aq::Finding& finding) { report.take(finding, choice); });
        summary.add(report, choice, session);
        if (choice.summary) return;
        session.json ? printJson(session, files[i], report) : print(session, files[i], report);
      });
  if (choice.summary) summary.print(session);
  session.tell(summary.text());
}

std::string kindNames() {
  std::string text = "\nNames of findings, for --only and --ignore:\n";
  for (const aq::FindingKind& kind : aq::findingKinds()) {
    text += fmt::format("  {:<16} {:<8} {}\n", kind.name, aq::severityText(kind.severity),
                        kind.meaning);
  }
  return text;
}

}  // namespace

void addCheck(CLI::App& program, Session& session) {
  const auto choice = std::make_shared<CheckChoice>();
  CLI::App* const command =
      addCommand(program, session, "check", "Report what is or may be wrong with files",
                 "Examples:\n"
                 "  aqdata check .\n"
                 "  aqdata check --ignore level-invalid,heading --strict *.sth.csv\n",
                 [&session, choice] { check(session, *choice); });
  command->footer(command->get_footer() + kindNames());
  addFiles(*command, session);
  std::vector<std::string> known;
  for (const aq::FindingKind& kind : aq::findingKinds()) known.emplace_back(kind.name);
  const auto addNames = [&](const char* name, std::vector<std::string>& names, const char* what) {
    CLI::Option* const option = command->add_option(name, names, what)
                                    ->delimiter(',')
                                    ->allow_extra_args(false)
                                    ->option_text("NAMES");
    addWords(session, *option, known);
  };
  addNames("--only", choice->only, "Report only these findings");
  addNames("--ignore", choice->ignore, "Report all except these findings");
  CLI::Option* const severity =
      command
          ->add_option("--severity", choice->severity,
                       "Omit findings below WORD (note, warning or error)")
          ->option_text("WORD");
  addWords(session, *severity, {"note", "warning", "error"});
  command->add_flag("--summary", choice->summary, "Count findings by kind over all files");
  command->add_flag("--strict", choice->strict, "Exit with status 1 for notes too");
  command
      ->add_option("--limit", choice->limit,
                   "List at most this many findings of a kind per file (20)")
      ->check(wholeNumber(0, 1000000), "")
      ->option_text("N");
  addJobs(*command, session);
}

}  // namespace aqdata
