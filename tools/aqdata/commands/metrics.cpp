#include <fmt/format.h>

#include <algorithm>
#include <cmath>
#include <optional>

#include "tools/aqdata/event.h"
#include "tools/aqdata/files.h"
#include "tools/aqdata/noise.h"
#include "tools/aqdata/parallel.h"
#include "tools/aqdata/program.h"
#include "tools/aqdata/runs.h"
#include "tools/aqdata/terminal.h"
#include "tools/aqdata/text.h"

namespace aqdata {
namespace {

struct MetricsChoice {
  std::string map;
  bool maps = false;  // use the maps next to the histories
};

/// The metrics of a file.
struct FileMetrics {
  Json document = {};  // includes the records if requested
  std::size_t records = 0;
  std::vector<std::string> words =
      {};  // sentences about the event and about values that could not be computed
  std::string failure = {};
};

Json recordsJson(const aq::HistoryMetrics& metrics) {
  Json records = Json::array();
  for (const aq::RecordMetrics& record : metrics.records) {
    Json row{{"record", record.record}};
    for (const MetricName& name : kMetricNames) row[name.text] = metricJson(record, name.type);
    records.push_back(std::move(row));
  }
  return records;
}

FileMetrics metricsOf(const std::string& file, const MetricsChoice& choice, bool withRecords) {
  const History read = openHistory(file);
  const std::string mapFile = choice.maps ? nextToHistory(file, ".mask.csv") : choice.map;
  const auto map = mapFile.empty() ? nullptr : openMap(mapFile).model;
  FileMetrics outcome;
  outcome.document = {{"file", file}, {"mask", mapFile.empty() ? Json() : Json(mapFile)}};
  if (!withRecords) {
    const aq::HistoryEvent found = aq::historyEvent(*read.model, map.get());
    outcome.records = found.records;
    outcome.document["event"] = eventJson(found.event, found.firstRecord);
    return outcome;
  }
  const aq::HistoryMetrics metrics = aq::historyMetrics(*read.model, map.get());
  outcome.records = metrics.records.size();
  outcome.document["records"] = recordsJson(metrics);
  const int firstRecord = metrics.records.empty() ? 0 : metrics.records.front().record;
  outcome.document["event"] = eventJson(metrics.event, firstRecord);
  outcome.words = eventWords(metrics, outcome.document["event"], *read.model, map.get());
  for (std::string& words : missingWords(metrics, map.get()))
    outcome.words.push_back(std::move(words));
  return outcome;
}

std::string metricCell(const Json& value, aq::AQ_METRIC_TYPE type) {
  if (value.is_null()) return "-";
  if (type == aq::AQ_METRIC_INTEG) return flagsText(value.get<int>());
  return isBand(type) ? value.dump() : fmt::format("{:.2f}", value.get<double>());
}

void printMetrics(Session& session, const Json& document) {
  std::vector<Table::Column> columns{{"record", true}};
  const bool withMap = !document["mask"].is_null();
  for (const MetricName& name : kMetricNames) {
    if (name.type == aq::AQ_METRIC_LGB && !withMap) continue;
    columns.push_back({name.text, name.type != aq::AQ_METRIC_INTEG});
  }
  Table table(columns);
  for (const Json& record : document["records"]) {
    std::vector<std::string> cells{record["record"].dump()};
    for (const MetricName& name : kMetricNames) {
      if (name.type == aq::AQ_METRIC_LGB && !withMap) continue;
      cells.push_back(metricCell(record[name.text], name.type));
    }
    table.add(std::move(cells));
  }
  table.print(session);
}

/// A file's line in the table for several files; `text` formats the numbers of the event.
template <class Text>
std::vector<std::string> eventCells(const FileMetrics& outcome, const Text& text) {
  const Json& event = outcome.document["event"];
  std::vector<std::string> cells{outcome.document["file"].get<std::string>(),
                                 std::to_string(outcome.records)};
  for (const char* key : kEventKeys) cells.push_back(text(event.is_null() ? Json() : event[key]));
  return cells;
}

std::string shortNumber(const Json& value) {
  if (value.is_null()) return "-";
  return value.is_number_float() ? fmt::format("{:.2f}", value.get<double>()) : value.dump();
}

/// The lines of a table of comma-separated values.
class CsvLines {
 public:
  void add(const std::vector<std::string>& fields) {
    std::vector<std::string> quoted;
    quoted.reserve(fields.size());
    for (const std::string& field : fields) quoted.push_back(csvField(field));
    lines_.push_back(fmt::format("{}", fmt::join(quoted, ",")));
  }
  [[nodiscard]] const std::vector<std::string>& all() const { return lines_; }

 private:
  std::vector<std::string> lines_;
};

void addMetricLines(const Json& document, CsvLines& lines) {
  std::vector<std::string> fields{"record"};
  for (const MetricName& name : kMetricNames) fields.emplace_back(name.text);
  lines.add(fields);
  for (const Json& record : document["records"]) {
    fields.clear();
    for (const auto& [key, value] : record.items()) fields.push_back(cellText(value));
    lines.add(fields);
  }
}

/// Receives the metrics of the files, one after the other, and prints or writes them.
class MetricsReport {
 public:
  MetricsReport(Session& session, bool oneFile) : session_(session), oneFile_(oneFile) {
    std::vector<std::string> heads{"file", "records"};
    heads.insert(heads.end(), std::begin(kEventKeys), std::end(kEventKeys));
    if (!oneFile) lines_.add(heads);
  }

  void take(const FileMetrics& outcome) {
    if (!session_.output.empty()) {
      take(outcome, lines_);
    } else if (session_.json) {
      session_.printDocument(outcome.document);
    } else if (oneFile_) {
      printMetrics(session_, outcome.document);
      session_.print("\n");
      for (const std::string& words : outcome.words) session_.print(words + "\n");
    } else {
      auto cells = eventCells(outcome, shortNumber);
      cells.front() = aq::escaped(cells.front());
      table_.add(std::move(cells));
    }
  }

  void finish(std::size_t files) {
    if (!session_.output.empty()) {
      if (session_.status() != kFine)
        throw Failure("nothing was written, because some metrics could not be computed");
      writeLines(session_, lines_.all());
      session_.wrote(oneFile_ ? event_ : fmt::format("the events of {}", counted(files, "file")));
    } else if (!session_.json && !oneFile_) {
      if (terminal::onOutput()) table_.fit(static_cast<std::size_t>(terminal::width()));
      table_.print(session_);
    }
  }

 private:
  /// Adds the records of a single file, or the event of one of several files.
  void take(const FileMetrics& outcome, CsvLines& lines) {
    if (!oneFile_) return lines.add(eventCells(outcome, cellText));
    addMetricLines(outcome.document, lines);
    event_ = fmt::format("the metrics of {}; {}", counted(outcome.records, "record"),
                         outcome.words.front());
  }

  Session& session_;
  bool oneFile_;
  std::string event_;  // for the closing message: the event of a single file, which the table lacks
  CsvLines lines_;
  Table table_{{{"file"},
                {"records", true, true},
                {"EPNL", true},
                {"with_sharing", true},
                {"PNLTM", true},
                {"sharing", true, true},
                {"duration", true, true},
                {"first", true},
                {"maximum", true},
                {"last", true}}};
};

void metrics(Session& session, const MetricsChoice& choice) {
  const std::vector<std::string> files = chosenHistories(session);
  const bool oneFile = files.size() == 1;
  if (!choice.map.empty() && !oneFile) {
    throw Failure("--mask names the map of a single history; use --masks for several");
  }
  if (!session.output.empty()) expectOutput(session, {".csv"}, files);
  const bool withRecords = oneFile || (session.json && session.output.empty());
  MetricsReport report(session, oneFile);
  inOrder(
      files.size(), session.jobs,
      [&](std::size_t i) -> FileMetrics {
        try {
          return metricsOf(files[i], choice, withRecords);
        } catch (const std::exception& error) {
          FileMetrics outcome;
          outcome.failure = failureText(files[i], error);
          return outcome;
        }
      },
      [&](std::size_t i, const FileMetrics& outcome) {
        session.progress(i + 1, files.size());
        if (!outcome.failure.empty()) return session.complain(outcome.failure, files[i]);
        report.take(outcome);
      });
  if (!oneFile || session.status() == kFine) report.finish(files.size());
}

}  // namespace

void addMetrics(CLI::App& program, Session& session) {
  const auto choice = std::make_shared<MetricsChoice>();
  CLI::App* const command =
      addCommand(program, session, "metrics", "Compute noise metrics and the event: PNLT, EPNL",
                 "For one history, prints the metrics of each record, then the event; for\n"
                 "several, the event of each history on one line. -o writes the same table,\n"
                 "for one history without the event. INTEG says which part of the event a record\n"
                 "is: the maximum, the first or last record of the sum, or a second peak.\n\n"
                 "Examples:\n"
                 "  aqdata metrics fly-over.sth.csv --mask fly-over.mask.csv\n"
                 "  aqdata metrics fly-over.sth.csv --masks -o metrics.csv\n",
                 [&session, choice] { metrics(session, *choice); });
  addFiles(*command, session);
  command->add_option("--mask", choice->map, "The masking map of the history")->option_text("MAP");
  command->add_flag("--masks", choice->maps,
                    "Use maps next to histories: x.mask.csv for x.sth.csv");
  addOutputFile(*command, session, "The table to write, comma-separated", false);
  addJobs(*command, session);
}

}  // namespace aqdata
