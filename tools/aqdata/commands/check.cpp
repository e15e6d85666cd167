#include <aq/check/check_file.h>
#include <aq/files/file_kind.h>
#include <fmt/format.h>

#include <algorithm>
#include <map>

#include "tools/aqdata/files.h"
#include "tools/aqdata/measurement.h"
#include "tools/aqdata/parallel.h"
#include "tools/aqdata/program.h"
#include "tools/aqdata/text.h"

namespace aqdata {
namespace {

struct CheckChoice {
  std::vector<std::string> only;
  std::vector<std::string> ignore;
  bool strict = false;
  std::size_t limit = 20;  // findings of one kind that are listed, a file

  [[nodiscard]] bool wants(std::string_view name) const {
    const auto has = [name](const auto& names) {
      return std::find(names.begin(), names.end(), name) != names.end();
    };
    return (only.empty() || has(only)) && !has(ignore);
  }
};

/// What was found in one file. Only so many findings of a kind are kept that a broken file of a
/// million lines needs no memory for them; all are counted.
struct Report {
  struct Kind {
    std::size_t count = 0;
    std::vector<aq::Finding> kept = {};
  };
  std::vector<const aq::FindingKind*> order = {};  // as they came
  std::map<std::string_view, Kind> kinds = {};

  void take(const aq::Finding& finding, const CheckChoice& choice) {
    if (!choice.wants(finding.kind.name)) return;
    Kind& kind = kinds[finding.kind.name];
    if (kind.count == 0) order.push_back(&finding.kind);
    ++kind.count;
    if (kind.kept.size() < choice.limit) kind.kept.push_back(finding);
  }
};

Report reportOf(const std::string& file, const CheckChoice& choice) {
  Report report;
  aq::checkWithHistory(file, [&](const aq::Finding& finding) { report.take(finding, choice); });
  return report;
}

std::string placeText(const aq::FindingPlace& place) {
  std::string text;
  if (place.line != 0) text += fmt::format(", line {}", place.line);
  if (place.field != 0) text += fmt::format(", field {}", place.field);
  if (place.record) text += fmt::format(", record {}", *place.record);
  if (place.band) text += fmt::format(", band {}", *place.band);
  return text;
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
  for (const aq::FindingKind* const kind : report.order) {
    const Report::Kind& found = report.kinds.at(kind->name);
    const std::string severity =
        session.painted(colourOf(kind->severity), aq::severityText(kind->severity));
    for (const aq::Finding& finding : found.kept) {
      session.print(fmt::format("{}{}: {}: {} {}\n", aq::escaped(file), placeText(finding.place),
                                severity, finding.message,
                                session.faint(fmt::format("[{}]", kind->name))));
    }
    if (found.count == found.kept.size()) continue;
    session.print(fmt::format("{}: {}: {} more {}\n", aq::escaped(file), severity,
                              found.count - found.kept.size(),
                              session.faint(fmt::format("[{}]", kind->name))));
  }
}

Json findingJson(const aq::Finding& finding) {
  Json json{{"name", finding.kind.name}, {"severity", aq::severityText(finding.kind.severity)}};
  const auto addPlace = [&json](const char* key, auto value) {
    if (value != 0) json[key] = value;
  };
  addPlace("line", finding.place.line);
  addPlace("field", finding.place.field);
  if (finding.place.record) json["record"] = *finding.place.record;
  if (finding.place.band) json["band"] = *finding.place.band;
  json["message"] = finding.message;
  return json;
}

void printJson(Session& session, const std::string& file, const Report& report) {
  Json findings = Json::array();
  Json counts = Json::object();
  for (const aq::FindingKind* const kind : report.order) {
    const Report::Kind& found = report.kinds.at(kind->name);
    counts[std::string(kind->name)] = found.count;
    for (const aq::Finding& finding : found.kept) findings.push_back(findingJson(finding));
  }
  session.printDocument(Json{{"file", file},
                             {"kind", aq::kindText(aq::kindOfFile(file))},
                             {"findings", std::move(findings)},
                             {"counts", std::move(counts)}});
}

/// Counts what the files gave, and ends the session as they ask for.
struct Summary {
  std::size_t files = 0;
  std::size_t sound = 0;  // files without a finding
  std::map<aq::Severity, std::size_t> counts = {};

  void add(const Report& report, const CheckChoice& choice, Session& session) {
    ++files;
    if (report.order.empty()) ++sound;
    for (const aq::FindingKind* const kind : report.order) {
      counts[kind->severity] += report.kinds.at(kind->name).count;
      if (choice.strict || kind->severity != aq::Severity::Note) session.end(kFindings);
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
  inOrder(
      files.size(), session.jobs, [&](std::size_t i) { return reportOf(files[i], choice); },
      [&](std::size_t i, const Report& report) {
        session.progress(i + 1, files.size());
        summary.add(report, choice, session);
        session.json ? printJson(session, files[i], report) : print(session, files[i], report);
      });
  session.tell(summary.text());
}

std::string kindNames() {
  std::string text = "\nFindings, with --only and --ignore:\n";
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
      addCommand(program, session, "check", "Report what is wrong or odd about files",
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
  addNames("--only", choice->only, "Report these findings alone");
  addNames("--ignore", choice->ignore, "Report all but these findings");
  command->add_flag("--strict", choice->strict, "Exit status 1 for notes too");
  command
      ->add_option("--limit", choice->limit, "How many findings of a kind are listed a file (20)")
      ->check(wholeNumber(0, 1000000), "")
      ->option_text("N");
  addJobs(*command, session);
}

}  // namespace aqdata
