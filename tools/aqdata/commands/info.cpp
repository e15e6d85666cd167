#include <aq/files/file_kind.h>
#include <aq/sdf/recording.h>
#include <aq/text/fields.h>
#include <fmt/format.h>

#include <algorithm>
#include <cmath>
#include <optional>

#include "tools/aqdata/files.h"
#include "tools/aqdata/parallel.h"
#include "tools/aqdata/program.h"
#include "tools/aqdata/sheet.h"
#include "tools/aqdata/terminal.h"
#include "tools/aqdata/text.h"
#include "tools/aqdata/where.h"

namespace aqdata {
namespace {

struct InfoChoice {
  std::string where = {};
  std::vector<std::string> columns = {};
  std::vector<std::string> sort = {};
  bool reverse = false;
};

/// A summary of the records of a file of any kind.
struct Extent {
  std::size_t count = 0;
  std::int32_t low = 0;
  std::int32_t high = 0;
  std::optional<double> begin = {};  // time of day of the lowest-numbered record, in seconds
  std::optional<double> end = {};    // time of day of the highest-numbered record
  std::string beginText = {};
  std::string endText = {};

  void see(std::int32_t record) {
    low = count == 0 ? record : std::min(low, record);
    high = count == 0 ? record : std::max(high, record);
    ++count;
  }
  void see(std::int32_t record, const aq::AQ_Time& time) {
    see(record);
    if (record == low) begin = time.TODseconds(), beginText = timeText(time);
    if (record == high) end = time.TODseconds(), endText = timeText(time);
  }
  void addTo(Json& info, const char* ofWhat) const {
    info[ofWhat] = count;
    if (count == 0) return;
    info["first"] = low;
    info["last"] = high;
    info["missing"] = static_cast<std::size_t>(high - low) + 1 - count;
    if (!begin) return;
    info["begin"] = beginText;
    info["end"] = endText;
    // A step back of more than half a day crosses midnight; a smaller one is an error in the times.
    const double seconds = *end - *begin;
    info["duration_s"] = tidySeconds(seconds < -43200 ? seconds + 86400 : seconds);
  }
};

void addBands(Json& info, std::int16_t low, std::int16_t high) {
  info["low_band"] = low;
  info["high_band"] = high;
}

void describe(const History& read, Json& info) {
  Extent extent;
  for (const auto& [record, spectrum] : *read.model) extent.see(record, spectrum->timeValue());
  extent.addTo(info, "records");
  const auto [low, high] = bandsOf(*read.model);
  if (extent.count != 0) addBands(info, low, high);
}

void describe(const MaskingMap& read, Json& info) {
  Extent extent;
  for (const auto& [record, row] : *read.model) extent.see(record);
  extent.addTo(info, "records");
  addBands(info, read.header->iBandLow, read.header->iBandHigh);
}

void describe(const SpectrumRecord& read, Json& info) {
  info["records"] = 1;
  addBands(info, read.model->LowBand(), read.model->HighBand());
}

template <class Header>
void describe(const Held<Header, aq::AQ_PositionTimeHistory>& read, Json& info) {
  const aq::AQ_PositionTimeHistory& history = *read.model;
  Extent extent;
  for (const auto& [place, position] : history) extent.see(place, position->lazyTime().value());
  extent.addTo(info, "positions");
}

template <class Header>
void describe(const Held<Header, aq::AQ_GeometryTimeHistory>& read, Json& info) {
  Extent extent;
  for (const auto& [record, point] : *read.model) extent.see(record, *point->Tm());
  extent.addTo(info, "records");
}

template <class Header>
void describe(const Held<Header, aq::AQ_Microphone>& read, Json& info) {
  const aq::AQ_Microphone& at = *read.model;
  info["position"] = {at.X, at.Y, at.Z};
  info["height"] = at.Height;
}

void describe(const Parameters&, Json&) {}

/// The instrument's word for a code, or the number if there is no word.
std::string codeText(const aq::sdf::Record& record, const aq::sdf::Field& field) {
  const std::int32_t number = record.integer(field);
  const std::string_view word = aq::sdf::wordOf(*field.codes, number);
  return word.empty() ? std::to_string(number) : std::string(word);
}

std::string unitText(const aq::sdf::Record& record, const aq::sdf::Field& field) {
  return record.unit(field).label;
}

Json traceInfo(const aq::sdf::Recording& recording, const aq::sdf::TraceSet& set) {
  using aq::sdf::kData;
  return {
      {"title", set.header.text(kData["dataTitle"])},
      {"domain", codeText(set.header, kData["domain"])},
      {"data", codeText(set.header, kData["dataType"])},
      {"traces", set.traces},
      {"points", set.points},
      {"scans", recording.scansOf(set)},
      {"x_unit", unitText(set.header, kData["xUnit"])},
      {"y_unit", set.header.integer(kData["yUnitValid"]) != 0 ? unitText(set.header, kData["yUnit"])
                                                              : std::string()}};
}

Json channelInfo(const aq::sdf::Record& channel) {
  using aq::sdf::kChannel;
  return {{"label", channel.text(kChannel["channelLabel"])},
          {"serial_number", channel.text(kChannel["serialNum"])},
          {"unit", unitText(channel, kChannel["engUnit"])},
          {"weighting", codeText(channel, kChannel["weight"])},
          {"overload", codeText(channel, kChannel["overloaded"])},
          {"range_db_v_peak", channel.real(kChannel["range"])}};
}

/// Adds a recording's revision, number of scans, traces and channels.
void addRecording(const std::string& path, Json& info) {
  const auto recording = aq::sdf::Recording::fromFile(path);
  info["revision"] = recording.records().revision();
  info["scans"] = recording.scans().valid;
  for (const aq::sdf::TraceSet& set : recording.sets()) {
    info["traces"].push_back(traceInfo(recording, set));
  }
  for (const auto& channel : recording.records().all(aq::sdf::RecordType::Channel)) {
    info["channels"].push_back(channelInfo(channel));
  }
}

struct Outcome {
  Json info = {};
  std::string_view word = {};  // the word for the file's kind
  std::string failure = {};
};

/// What is known about a recording without levels, such as a time signal; nothing for other files
/// and for a recording that cannot be read.
std::optional<Json> infoWithoutLevels(const std::string& path, const std::string& failure) {
  constexpr auto kKind = aq::FileKind::AnalyzerRecording;
  if (aq::kindOfFile(path) != kKind) return std::nullopt;
  Json info{{"file", path}, {"kind", kindText(kKind)}, {"no_levels", failure}};
  try {
    addRecording(path, info);
  } catch (const aq::ReadFailure&) {
    return std::nullopt;
  }
  info["header"] = Json::object();
  return info;
}

Outcome infoOf(const std::string& path) {
  try {
    const Measurement read = openFile(path);
    Json info{{"file", path}, {"kind", kindText(read.kind)}};
    std::visit([&](const auto& held) { describe(held, info); }, read.data);
    if (read.kind == aq::FileKind::AnalyzerRecording) addRecording(path, info);
    info["header"] = headerOf(read);
    return {std::move(info), kindWord(read.kind), {}};
  } catch (const Failure& failure) {
    if (auto info = infoWithoutLevels(path, failure.what())) {
      return {*std::move(info), kindWord(aq::FileKind::AnalyzerRecording), {}};
    }
    throw;
  }
}

/// The non-empty parts of an object, as in `label Mic 1, unit Pa`.
std::string partsText(const Json& object) {
  std::string text;
  for (const auto& [key, value] : object.items()) {
    const std::string part = cellText(value);
    if (part.empty()) continue;
    std::string name = key;
    std::replace(name.begin(), name.end(), '_', ' ');
    text += fmt::format("{}{} {}", text.empty() ? "" : ", ", name, part);
  }
  return text;
}

/// A value as a cell of a table: the entries of a list with a comma between them, or with a
/// semicolon between objects.
std::string tableText(const Json& value) {
  if (!value.is_array() || value.empty() || !value.front().is_object()) {
    return listText(value, ", ");
  }
  std::string text;
  for (const Json& entry : value) text += (text.empty() ? "" : "; ") + partsText(entry);
  return text;
}

/// The lines of a value; each entry of a list of strings or objects starts a new line.
std::vector<std::string> valueLines(const Json& value, std::size_t width) {
  if (!value.is_array() || value.empty() || value.front().is_number()) {
    return wrapped(listText(value, ", "), width);
  }
  std::vector<std::string> lines;
  for (const Json& entry : value) {
    const std::string text = entry.is_object() ? partsText(entry) : cellText(entry);
    for (std::string& line : wrapped(text, width)) lines.push_back(std::move(line));
  }
  return lines;
}

/// Prints each key with its value on a new line; leaves out empty values, and the keys that
/// `printCard` handles itself.
void printValues(Session& session, const Json& values) {
  constexpr std::size_t kKeys = 25;
  constexpr std::size_t kNarrowest = 20;
  const auto columns = static_cast<std::size_t>(std::max(0, terminal::width()));
  const std::size_t room = std::max(columns, kKeys + kNarrowest + 5) - kKeys - 5;
  const std::size_t width = terminal::onOutput() ? room : std::string::npos - 1;
  for (const auto& [key, value] : values.items()) {
    if (key == "file" || key == "kind" || key == "header" || listText(value, "").empty()) continue;
    std::string name = key;
    std::replace(name.begin(), name.end(), '_', ' ');
    for (const std::string& line : valueLines(value, width)) {
      session.print(
          fmt::format("  {}  {}\n", session.faint(fmt::format("{:<{}}", name, kKeys)), line));
      name.clear();
    }
  }
}

void printCard(Session& session, const Json& info) {
  const std::string title = aq::escaped(info["file"].get<std::string>());
  session.print(fmt::format("{}  {}\n", session.strong(title), info["kind"].get<std::string>()));
  printValues(session, info);
  printValues(session, info["header"]);
}

std::string bandsText(const Json& info) {
  if (!info.contains("low_band")) return {};
  return fmt::format("{}-{}", info["low_band"].get<int>(), info["high_band"].get<int>());
}

std::vector<std::string> tableRow(const Json& info, std::string_view word) {
  const auto text = [&info](const char* key) {
    return info.contains(key) ? cellText(info[key]) : std::string();
  };
  const Json& header = info["header"];
  const auto headerText = [&header](const char* key) {
    return header.contains(key) ? cellText(header[key]) : std::string();
  };
  const std::string count =
      info.contains("no_levels") ? "none" : text("records") + text("positions");
  const std::string missing = text("missing");
  return {text("file"),
          std::string(word),
          count,
          missing == "0" ? "" : missing,
          bandsText(info),
          text("begin"),
          text("duration_s"),
          headerText("microphone"),
          headerText("averaging"),
          headerText("time_stamp"),
          headerText("project")};
}

const std::vector<Table::Column> kColumns{{"file"},
                                          {"kind"},
                                          {"records", true},
                                          {"missing", true, true},
                                          {"bands", true, true},
                                          {"begin", false, true},
                                          {"seconds", true, true},
                                          {"microphone", false, true},
                                          {"averaging", false, true},
                                          {"stamp", false, true},
                                          {"project", false, true}};

/// The keys that --where, --columns and --sort accept.
std::vector<std::string> fieldNames() {
  std::vector<std::string> names{"file",     "kind",      "records",  "positions", "first",
                                 "last",     "missing",   "begin",    "end",       "duration_s",
                                 "low_band", "high_band", "position", "height",    "no_levels",
                                 "revision", "scans",     "traces",   "channels"};
  for (std::string& key : headerKeys()) names.push_back(std::move(key));
  return names;
}

/// Which files and columns to list, and in which order.
class Listing {
 public:
  explicit Listing(const InfoChoice& choice)
      : columns_(choice.columns), keys_(choice.sort), falls_(choice.reverse) {
    const std::vector<std::string> fields = fieldNames();
    if (!choice.where.empty()) wanted_ = conditionFrom(choice.where, fields);
    for (const std::string& column : columns_) expectField(column, fields);
    for (const std::string& key : keys_) expectField(key, fields);
    if (choice.reverse && keys_.empty()) throw Failure("--reverse needs --sort");
  }

  [[nodiscard]] bool isChosen() const { return wanted_ || !columns_.empty() || !keys_.empty(); }

  void take(Session& session, Outcome outcome) {
    if (wanted_ && !wanted_(outcome.info)) return;
    if (keys_.empty() && session.json) return session.printDocument(shownOf(outcome.info));
    outcomes_.push_back(std::move(outcome));
  }

  void print(Session& session) {
    std::stable_sort(outcomes_.begin(), outcomes_.end(), [&](const Outcome& a, const Outcome& b) {
      return comesBefore(a.info, b.info);
    });
    if (session.json) {
      for (const Outcome& outcome : outcomes_) session.printDocument(shownOf(outcome.info));
      return;
    }
    Table table(headings());
    for (const Outcome& outcome : outcomes_) table.add(rowOf(outcome));
    if (terminal::onOutput()) table.fit(static_cast<std::size_t>(terminal::width()));
    table.print(session);
  }

 private:
  [[nodiscard]] bool comesBefore(const Json& a, const Json& b) const {
    for (const std::string& field : keys_) {
      const Json& one = fieldOf(a, field);
      const Json& other = fieldOf(b, field);
      const int order = compareFields(one, other);
      const bool lacking =
          listText(one, "").empty() != listText(other, "").empty();  // empty values come last
      if (order != 0) return falls_ && !lacking ? order > 0 : order < 0;
    }
    return false;
  }

  [[nodiscard]] Json shownOf(const Json& info) const {
    if (columns_.empty()) return info;
    Json some = Json::object();
    for (const std::string& column : columns_) some[column] = fieldOf(info, column);
    return some;
  }

  [[nodiscard]] std::vector<Table::Column> headings() const {
    if (columns_.empty()) return kColumns;
    std::vector<Table::Column> headings;
    for (const std::string& column : columns_) {
      const bool number = std::any_of(outcomes_.begin(), outcomes_.end(), [&](const Outcome& each) {
        return fieldOf(each.info, column).is_number();
      });
      headings.push_back({column, number});
    }
    return headings;
  }

  [[nodiscard]] std::vector<std::string> rowOf(const Outcome& outcome) const {
    if (columns_.empty()) return tableRow(outcome.info, outcome.word);
    std::vector<std::string> cells;
    for (const std::string& column : columns_) {
      cells.push_back(tableText(fieldOf(outcome.info, column)));
    }
    return cells;
  }

  Condition wanted_;
  std::vector<std::string> columns_;
  std::vector<std::string> keys_;
  bool falls_;
  std::vector<Outcome> outcomes_ = {};
};

void info(Session& session, const InfoChoice& choice) {
  Listing listing(choice);
  const std::vector<std::string> files = chosenFiles(session);
  const bool card = files.size() == 1 && !session.json && !listing.isChosen();
  inOrder(
      files.size(), session.jobs,
      [&](std::size_t i) -> Outcome {
        try {
          return infoOf(files[i]);
        } catch (const std::exception& error) {
          return {{}, {}, failureText(files[i], error)};
        }
      },
      [&](std::size_t i, const Outcome& outcome) {
        session.progress(i + 1, files.size());
        if (!outcome.failure.empty()) return session.complain(outcome.failure, files[i]);
        if (card) return printCard(session, outcome.info);
        listing.take(session, outcome);
      });
  if (files.size() > 1 || listing.isChosen()) listing.print(session);
}

}  // namespace

void addInfo(CLI::App& program, Session& session) {
  const auto choice = std::make_shared<InfoChoice>();
  CLI::App* const command =
      addCommand(program, session, "info", "Summarise a file, or list several files in a table",
                 "Examples:\n"
                 "  aqdata info fly-over.sth.csv\n"
                 "  aqdata info --json .\n"
                 "  aqdata info . --where 'records>10 and begin>=14:00' \\\n"
                 "    --columns file,microphone,records --sort begin\n",
                 [&session, choice] { info(session, *choice); });
  addFiles(*command, session);
  command->add_option("--where", choice->where, "List only files that match, as in records>10")
      ->option_text("TEXT");
  command
      ->add_option("--columns", choice->columns,
                   "The columns to show: --json keys, separated by commas")
      ->delimiter(',')
      ->option_text("FIELDS");
  command->add_option("--sort", choice->sort, "Sort by these columns, separated by commas")
      ->delimiter(',')
      ->option_text("FIELDS");
  command->add_flag("--reverse", choice->reverse, "Sort in descending order");
  addJobs(*command, session);
}

}  // namespace aqdata
