#include <aq/core/error.h>
#include <aq/masking/cut_map.h>
#include <aq/noise/record_geometry.h>
#include <aq/noise/records_down.h>
#include <aq/text/number_text.h>
#include <fmt/format.h>

#include "tools/aqdata/files.h"
#include "tools/aqdata/noise.h"
#include "tools/aqdata/parallel.h"
#include "tools/aqdata/program.h"
#include "tools/aqdata/runs.h"
#include "tools/aqdata/text.h"

namespace aqdata {
namespace {

struct CutChoice {
  std::string records = {};
  std::string from = {};
  std::string to = {};
  std::string down = {};
  std::string map = {};
  std::string geometry = {};
  bool maps = false;        // also cut the maps next to the histories
  bool geometries = false;  // also cut the geometries next to the histories
  bool renumber = false;
};

/// The options that choose records, as text for comments and messages.
std::string optionsText(const CutChoice& choice) {
  std::string text;
  const auto add = [&](const char* name, const std::string& value) {
    if (!value.empty()) text += fmt::format("{}{} {}", text.empty() ? "" : " ", name, value);
  };
  add("--records", choice.records);
  add("--from", choice.from);
  add("--to", choice.to);
  add("--down", choice.down);
  return text;
}

/// Rejects missing or contradictory options, and values that are wrong for every file.
void expectOneChoice(const CutChoice& choice, bool severalFiles) {
  const bool byTime = !choice.from.empty() || !choice.to.empty();
  const int ways =
      (choice.records.empty() ? 0 : 1) + (byTime ? 1 : 0) + (choice.down.empty() ? 0 : 1);
  if (ways == 0) throw Failure("choose records with --records, --from and --to, or --down");
  if (ways > 1) {
    throw Failure(optionsText(choice) + " cannot be combined");
  }
  if (!choice.records.empty()) static_cast<void>(rangeFrom(choice.records, "records"));
  for (const auto& [name, text] : {std::pair{"--from", choice.from}, {"--to", choice.to}}) {
    if (!text.empty()) static_cast<void>(timeFrom(name, text));
  }
  if (!choice.map.empty() && choice.maps) throw Failure("--mask and --masks cannot be combined");
  if (!choice.geometry.empty() && choice.geometries) {
    throw Failure("--geometry and --geometries cannot be combined");
  }
  if (severalFiles && (!choice.map.empty() || !choice.geometry.empty())) {
    throw Failure(
        "--mask and --geometry belong to one history; for several, use --masks and --geometries");
  }
}

aq::RecordRange rangeOf(const Run& run, const CutChoice& choice) {
  const aq::AQ_SpectralTimeHistory& history = *run.history.model;
  if (!choice.records.empty()) {
    const Range range = rangeFrom(choice.records, "records");
    return {range.first, range.last};
  }
  if (!choice.down.empty()) {
    return aq::recordsDown(history, run.map ? run.map->model.get() : nullptr,
                           aq::doubleFrom(choice.down));
  }
  if (history.begin() == history.end()) throw Failure("the history has no records");
  const double begin = (*history.begin()).second->lazyTime().secondsOfDay();
  constexpr double kHalfDay = 43200;
  const double from = choice.from.empty() ? begin : timeFrom("--from", choice.from).TODseconds();
  const double to =
      choice.to.empty() ? begin + kHalfDay - 1 : timeFrom("--to", choice.to).TODseconds();
  return aq::recordsBetween(history, from, to);
}

struct CutOutcome {
  Json document = {};
  std::vector<std::string> words = {};
  std::string failure = {};
};

/// Cuts the run to a range of records; returns their previous numbers.
aq::RecordRange cutRun(Run& run, const CutChoice& choice) {
  const aq::RecordRange range = rangeOf(run, choice);
  const bool fromOne = choice.renumber || run.map || run.geometry;
  aq::AQ_SpectralTimeHistory& history = *run.history.model;
  std::optional<aq::RecordRange> found;
  for (const auto& [number, spectrum] : history) {
    if (number < range.first || number > range.last) continue;
    found = {found ? found->first : number, number};
  }
  if (!found) {
    throw aq::Error(aq::ErrorCode::InvalidArgument,
                    fmt::format("no record from {} to {}", range.first, range.last));
  }
  auto part = aq::cutHistory(history, *found, fromOne);
  if (run.map) run.map->model = aq::cutMap(*run.map->model, found->first, found->last);
  if (run.geometry) run.geometry->model = aq::geometryOf(*run.geometry->model, history, *found);
  run.history.model = std::move(part);
  return *found;
}

CutOutcome cutFile(const Session& session, const RunFiles& files, const RunFiles& to,
                   const CutChoice& choice) {
  for (const std::string& output : to.all()) expectNoInput(output, files.all());
  Run run = openRun(files);
  const aq::RecordRange was = cutRun(run, choice);
  const std::int32_t low = run.history.model->LoRec();
  const std::int32_t high = run.history.model->HiRec();
  const std::string records = low == was.first ? fmt::format("records {} to {}", low, high)
                                               : fmt::format("records {} to {} were {} to {}", low,
                                                             high, was.first, was.last);
  addComment(run, fmt::format("Cut from {} by {}: {}",
                              aq::escaped(aq::fileInformation()->recordedName(files.history)),
                              optionsText(choice), records));
  CutOutcome outcome;
  outcome.document = {{"file", files.history}, {"output", to.history}, {"records", high - low + 1},
                      {"first", low},          {"last", high},         {"first_was", was.first},
                      {"last_was", was.last}};
  if (run.map) outcome.document["map"] = to.map;
  if (run.geometry) outcome.document["geometry"] = to.geometry;
  outcome.words = writeRun(session, run, to, files.history);
  outcome.words.insert(outcome.words.begin(), records);
  return outcome;
}

void cut(Session& session, const CutChoice& choice) {
  OutputPlaces places(session);
  const std::vector<std::string> files = chosenHistories(session);
  expectOneChoice(choice, files.size() > 1);
  std::vector<std::pair<RunFiles, RunFiles>> jobs(files.size());
  for (std::size_t i = 0; i < files.size(); ++i) {
    auto& [from, to] = jobs[i];
    from = {files[i], choice.maps ? nextToHistory(files[i], ".mask.csv") : choice.map,
            choice.geometries ? nextToHistory(files[i], ".gth.csv") : choice.geometry};
    to.history = places.of(files[i]);
    expectEnding(to.history, {".sth.csv", ".spc", ".csv"});
    if (!from.map.empty()) to.map = nextToHistory(to.history, ".mask.csv");
    if (!from.geometry.empty()) to.geometry = nextToHistory(to.history, ".gth.csv");
  }
  inOrder(
      files.size(), session.jobs,
      [&](std::size_t i) -> CutOutcome {
        try {
          return cutFile(session, jobs[i].first, jobs[i].second, choice);
        } catch (const std::exception& error) {
          return {{}, {}, failureText(files[i], error)};
        }
      },
      [&](std::size_t i, const CutOutcome& outcome) {
        session.progress(i + 1, files.size());
        if (!outcome.failure.empty()) return session.complain(outcome.failure, files[i]);
        if (session.json) return session.printDocument(outcome.document);
        for (const std::string& words : outcome.words) {
          session.tell(fmt::format("{}: {}", aq::escaped(jobs[i].second.history), words));
        }
      });
}

}  // namespace

void addCut(CLI::App& program, Session& session) {
  const auto choice = std::make_shared<CutChoice>();
  CLI::App* const command = addCommand(
      program, session, "cut", "Cut histories, maps and geometries to a range of records",
      "Records keep their time stamps. They keep their numbers unless --renumber is\n"
      "given or a map or geometry is also cut, since these require numbers from 1;\n"
      "a comment in each header gives the old numbers. The map and geometry are\n"
      "written next to OUT, as x.mask.csv and x.gth.csv for x.sth.csv. --down also\n"
      "keeps the record before the event and the one after it. For several files or a\n"
      "folder, OUT is a folder.\n\n"
      "Examples:\n"
      "  aqdata cut fly-over.sth.csv --down 10 --masks -o event.sth.csv\n"
      "  aqdata cut fly-over.sth.csv --from 14:30:05 --to 14:30:20 -o part.sth.csv\n",
      [&session, choice] { cut(session, *choice); });
  addFiles(*command, session);
  const auto add = [&](const char* name, std::string& value, const char* what, const char* form) {
    return command->add_option(name, value, what)->option_text(form);
  };
  add("--records", choice->records, "Keep these records", "A:B");
  add("--from", choice->from, "Keep records from this time of day on", "TIME");
  add("--to", choice->to, "Keep records up to this time of day", "TIME");
  add("--down", choice->down, "Keep the event: PNLT within DB of the largest", "DB")
      ->check(finiteNumber, "");
  add("--mask", choice->map, "Also cut this masking map", "MAP");
  command->add_flag("--masks", choice->maps,
                    "Also cut the histories' maps: x.mask.csv for x.sth.csv");
  add("--geometry", choice->geometry, "Also cut this emission geometry", "FILE");
  command->add_flag("--geometries", choice->geometries,
                    "Also cut the geometries: x.gth.csv for x.sth.csv");
  command->add_flag("--renumber", choice->renumber,
                    "Number the records from 1 even without a map or geometry");
  addOutputFile(*command, session, "The history to write, or a folder");
  addJobs(*command, session);
}

}  // namespace aqdata
