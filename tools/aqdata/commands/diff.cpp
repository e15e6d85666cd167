#include <fmt/format.h>

#include <algorithm>
#include <cmath>
#include <filesystem>
#include <map>
#include <optional>

#include "tools/aqdata/files.h"
#include "tools/aqdata/measurement.h"
#include "tools/aqdata/parallel.h"
#include "tools/aqdata/path.h"
#include "tools/aqdata/program.h"
#include "tools/aqdata/sheet.h"
#include "tools/aqdata/terminal.h"
#include "tools/aqdata/text.h"

namespace aqdata {
namespace {

struct DiffChoice {
  std::string a;
  std::string b;
  double tolerance = 0;
  bool dates = false;
};

/// How two files differ in one column, or in one band.
struct Column {
  std::size_t count = 0;
  double largest = -1;      // -1 if nothing differs, 0 if only values other than numbers do
  std::int32_t record = 0;  // the record with the largest difference, the first one if several
  Json a = {};
  Json b = {};
  std::size_t numbers = 0;  // how many numbers were compared, including equal ones
  double sum = 0;           // the sum of the absolute differences

  void compare(const Json& one, const Json& other, std::int32_t number, double tolerance) {
    const bool areNumbers = one.is_number() && other.is_number();
    const double difference = areNumbers ? std::abs(one.get<double>() - other.get<double>()) : 0;
    if (areNumbers) ++numbers, sum += difference;
    constexpr double kRounding = 1e-9;  // so that 65.31 - 65.30 is not above 0.01
    if (areNumbers ? difference <= tolerance + kRounding : one == other) return;
    ++count;
    if (difference <= largest) return;
    largest = difference;
    record = number;
    a = one;
    b = other;
  }
};

struct Difference {
  Json header = Json::array();
  std::vector<std::int32_t> onlyInA = {};
  std::vector<std::int32_t> onlyInB = {};
  std::vector<std::pair<std::string, Column>> columns = {};
  std::map<std::int32_t, Column> bands = {};
  double mean = 0;  // mean absolute difference of the bands; without bands, of the columns

  [[nodiscard]] bool empty() const {
    return header.empty() && onlyInA.empty() && onlyInB.empty() && columns.empty() && bands.empty();
  }
};

/// Whether a header field is compared. A file's own name and date never are; the dates of its
/// source files are only on request.
bool isCompared(const std::string& key, bool dates) {
  if (key == "file_name" || key == "file_date") return false;
  return dates || !key.ends_with("_date");
}

void compareHeaders(const Json& a, const Json& b, bool dates, Difference& difference) {
  for (const auto& [key, value] : a.items()) {
    if (!isCompared(key, dates) || value == b[key]) continue;
    difference.header.push_back({{"key", key}, {"a", value}, {"b", b[key]}});
  }
}

/// The cell of a band; null if the row does not have the band.
Json bandCell(const Sheet& sheet, const Sheet::Row& row, std::int32_t band) {
  const std::int32_t place = band - sheet.low;
  if (place < 0 || place >= static_cast<std::int32_t>(row.bands.size())) return nullptr;
  return row.bands[static_cast<std::size_t>(place)];
}

class Comparison {
 public:
  Comparison(const Sheet& a, const Sheet& b, double tolerance)
      : a_(a), b_(b), tolerance_(tolerance), columns_(a.columns.size()) {}

  void run(Difference& difference) {
    auto one = a_.rows.begin();
    auto other = b_.rows.begin();
    while (one != a_.rows.end() || other != b_.rows.end()) {
      if (other == b_.rows.end() || (one != a_.rows.end() && one->number < other->number)) {
        difference.onlyInA.push_back((one++)->number);
      } else if (one == a_.rows.end() || other->number < one->number) {
        difference.onlyInB.push_back((other++)->number);
      } else {
        compare(*one++, *other++);
      }
    }
    difference.mean = meanOf();
    for (std::size_t i = 0; i < columns_.size(); ++i) {
      if (columns_[i].count != 0) difference.columns.emplace_back(a_.columns[i], columns_[i]);
    }
    std::erase_if(bands_, [](const auto& band) { return band.second.count == 0; });
    difference.bands = std::move(bands_);
  }

 private:
  void compare(const Sheet::Row& one, const Sheet::Row& other) {
    for (std::size_t i = 0; i < columns_.size(); ++i) {
      columns_[i].compare(one.cells[i], other.cells[i], one.number, tolerance_);
    }
    if (!a_.hasBands()) return;
    const std::int32_t high = std::max(a_.high, b_.high);
    for (std::int32_t band = std::min(a_.low, b_.low); band <= high; ++band) {
      bands_[band].compare(bandCell(a_, one, band), bandCell(b_, other, band), one.number,
                           tolerance_);
    }
  }

  [[nodiscard]] double meanOf() const {
    std::size_t numbers = 0;
    double sum = 0;
    const auto add = [&](const Column& column) {
      numbers += column.numbers;
      sum += column.sum;
    };
    for (const auto& [band, column] : bands_) add(column);
    if (bands_.empty()) {
      for (std::size_t i = 1; i < columns_.size(); ++i)
        add(columns_[i]);  // the first column is the row number
    }
    return numbers == 0 ? 0 : sum / static_cast<double>(numbers);
  }

  const Sheet& a_;
  const Sheet& b_;
  double tolerance_;
  std::vector<Column> columns_;
  std::map<std::int32_t, Column> bands_;
};

/// Ascending numbers as text, such as "1 to 3, 7".
std::string rangesText(const std::vector<std::int32_t>& numbers) {
  std::string text;
  for (std::size_t i = 0; i < numbers.size();) {
    std::size_t last = i;
    while (last + 1 < numbers.size() && numbers[last + 1] == numbers[last] + 1) ++last;
    text += text.empty() ? "" : ", ";
    text += last == i ? fmt::format("{}", numbers[i])
                      : fmt::format("{} to {}", numbers[i], numbers[last]);
    i = last + 1;
  }
  return text;
}

std::string shownCell(const Json& value) { return value.is_null() ? "nothing" : cellText(value); }

void printColumn(Session& session, const std::string& name, const Column& column) {
  const std::string most =
      column.a.is_number() && column.b.is_number()
          ? fmt::format("by at most {}, ", tidy(static_cast<float>(column.largest)))
          : "";
  session.print(fmt::format("{}: differs in {}, {}for example in record {}: {} and {}\n", name,
                            counted(column.count, "record"), most, column.record,
                            shownCell(column.a), shownCell(column.b)));
}

void print(Session& session, const Difference& difference) {
  for (const Json& field : difference.header) {
    session.print(fmt::format("{}: {} and {}\n", field["key"].get<std::string>(),
                              lineOf(field["a"]), lineOf(field["b"])));
  }
  const auto printOnly = [&](const char* where, const std::vector<std::int32_t>& numbers) {
    if (numbers.empty()) return;
    session.print(fmt::format("records only in {} file: {}\n", where, rangesText(numbers)));
  };
  printOnly("the first", difference.onlyInA);
  printOnly("the second", difference.onlyInB);
  for (const auto& [name, column] : difference.columns) printColumn(session, name, column);
  for (const auto& [band, column] : difference.bands) {
    printColumn(session, fmt::format("band {}", band), column);
  }
}

Json columnJson(const char* key, const Json& name, const Column& column) {
  return {{key, name},
          {"count", column.count},
          {"record", column.record},
          {"difference", column.a.is_number() && column.b.is_number()
                             ? Json(tidy(static_cast<float>(column.largest)))
                             : Json()},
          {"a", column.a},
          {"b", column.b}};
}

void printJson(Session& session, const DiffChoice& choice, const Difference& difference) {
  Json columns = Json::array();
  for (const auto& [name, column] : difference.columns) {
    columns.push_back(columnJson("column", name, column));
  }
  Json bands = Json::array();
  for (const auto& [band, column] : difference.bands) {
    bands.push_back(columnJson("band", band, column));
  }
  session.printDocument(Json{{"a", choice.a},
                             {"b", choice.b},
                             {"equal", difference.empty()},
                             {"header", difference.header},
                             {"only_in_a", difference.onlyInA},
                             {"only_in_b", difference.onlyInB},
                             {"columns", std::move(columns)},
                             {"bands", std::move(bands)}});
}

Difference differenceOf(const std::string& fileA, const std::string& fileB,
                        const DiffChoice& choice) {
  const Measurement a = openFile(fileA);
  const Measurement b = openFile(fileB);
  if (a.data.index() != b.data.index()) {
    throw Failure(fmt::format("{} ({}) cannot be compared with {} ({})", aq::escaped(fileA),
                              kindText(a.kind), aq::escaped(fileB), kindText(b.kind)));
  }
  Difference difference;
  compareHeaders(headerOf(a), headerOf(b), choice.dates, difference);
  Sheet sheetA = sheetOf(a);
  Sheet sheetB = sheetOf(b);
  for (Sheet* const sheet : {&sheetA, &sheetB}) sheet->dropColumns("time");
  Comparison(sheetA, sheetB, choice.tolerance).run(difference);
  return difference;
}

void diffFiles(Session& session, const DiffChoice& choice) {
  const Difference difference = differenceOf(choice.a, choice.b, choice);
  if (!difference.empty()) session.end(kFindings);
  if (session.json) return printJson(session, choice, difference);
  print(session, difference);
  if (difference.empty()) session.tell("no difference");
}

/// The measurement files below a folder, by relative path.
std::map<std::string, std::string> filesBelow(Session& session, const std::string& folder) {
  session.files = {folder};
  std::map<std::string, std::string> files;
  const std::filesystem::path root = pathOf(folder).lexically_normal();
  for (const std::string& file : chosenFiles(session)) {
    const auto path = pathOf(file).lexically_normal();
    files[path.lexically_relative(root).generic_string()] = file;
  }
  return files;
}

/// Two files with the same relative path; one is empty if only the other folder has the file.
struct FilePair {
  std::string name;
  std::string a;
  std::string b;
};

std::vector<FilePair> pairsOf(Session& session, const DiffChoice& choice) {
  const auto inA = filesBelow(session, choice.a);
  const auto inB = filesBelow(session, choice.b);
  std::vector<FilePair> pairs;
  for (const auto& [name, file] : inA) {
    const auto other = inB.find(name);
    pairs.push_back({name, file, other == inB.end() ? std::string() : other->second});
  }
  for (const auto& [name, file] : inB) {
    if (!inA.contains(name)) pairs.push_back({name, {}, file});
  }
  std::sort(pairs.begin(), pairs.end(),
            [](const auto& a, const auto& b) { return a.name < b.name; });
  return pairs;
}

/// How two files with the same relative path differ, or why they could not be compared.
struct PairOutcome {
  std::optional<Difference> difference = {};  // empty for an unpaired file or a failure
  std::string failure = {};
};

/// The band or column with the largest difference, and its name; null if no number differs.
std::pair<std::string, const Column*> largestOf(const Difference& difference) {
  std::pair<std::string, const Column*> found{{}, nullptr};
  const auto see = [&](const std::string& name, const Column& column) {
    if (!column.a.is_number() || !column.b.is_number()) return;
    if (found.second == nullptr || column.largest > found.second->largest) found = {name, &column};
  };
  for (const auto& [band, column] : difference.bands) see(fmt::format("band {}", band), column);
  for (const auto& [name, column] : difference.columns) see(name, column);
  return found;
}

Json pairJson(const FilePair& pair, const PairOutcome& outcome) {
  const auto orNull = [](const std::string& text) { return text.empty() ? Json() : Json(text); };
  Json document{{"name", pair.name}, {"a", orNull(pair.a)}, {"b", orNull(pair.b)}};
  if (!outcome.difference) return document;
  const Difference& difference = *outcome.difference;
  const auto [name, column] = largestOf(difference);
  Json header = Json::array();
  for (const Json& field : difference.header) header.push_back(field["key"]);
  document["equal"] = difference.empty();
  document["largest"] =
      column == nullptr ? Json(0) : Json(tidy(static_cast<float>(column->largest)));
  document["where"] = orNull(name);
  document["record"] = column == nullptr ? Json() : Json(column->record);
  document["mean"] = tidy(static_cast<float>(difference.mean));
  document["header"] = std::move(header);
  document["only_in_a"] = difference.onlyInA;
  document["only_in_b"] = difference.onlyInB;
  return document;
}

std::vector<std::string> pairRow(const FilePair& pair, const PairOutcome& outcome) {
  const std::string name = aq::escaped(pair.name);
  if (!outcome.difference) return {name, pair.b.empty() ? "missing" : "new", "", "", "", ""};
  const Difference& difference = *outcome.difference;
  if (difference.empty()) return {name, "equal", "", "", "", ""};
  const auto [where, column] = largestOf(difference);
  std::vector<std::string> others;
  const std::size_t alone = difference.onlyInA.size() + difference.onlyInB.size();
  if (alone != 0) others.push_back(fmt::format("{} in only one file", counted(alone, "record")));
  for (const Json& field : difference.header) others.push_back(field["key"].get<std::string>());
  return {name,
          "differs",
          column == nullptr ? "" : fmt::format("{}", tidy(static_cast<float>(column->largest))),
          column == nullptr ? "" : fmt::format("{}, record {}", where, column->record),
          fmt::format("{:.4g}", difference.mean),
          fmt::format("{}", fmt::join(others, ", "))};
}

/// Compares two folders file by file: two seasons, or one season before and after a change.
void diffFolders(Session& session, const DiffChoice& choice) {
  const std::vector<FilePair> pairs = pairsOf(session, choice);
  Table table({{"file"}, {""}, {"largest", true}, {"where"}, {"mean", true}, {"and", false, true}});
  std::map<std::string, std::size_t> counts;
  inOrder(
      pairs.size(), session.jobs,
      [&](std::size_t i) -> PairOutcome {
        const FilePair& pair = pairs[i];
        if (pair.a.empty() || pair.b.empty()) return {};
        try {
          return {differenceOf(pair.a, pair.b, choice), {}};
        } catch (const std::exception& error) {
          return {{}, failureText(pair.a, error)};
        }
      },
      [&](std::size_t i, const PairOutcome& outcome) {
        session.progress(i + 1, pairs.size());
        if (!outcome.failure.empty()) return session.complain(outcome.failure, pairs[i].name);
        std::vector<std::string> row = pairRow(pairs[i], outcome);
        ++counts[row[1]];
        if (row[1] != "equal") session.end(kFindings);
        if (session.json) return session.printDocument(pairJson(pairs[i], outcome));
        table.add(std::move(row));
      });
  if (session.json) return;
  if (terminal::onOutput()) table.fit(static_cast<std::size_t>(terminal::width()));
  table.print(session);
  session.tell(fmt::format("{}: {} equal, {} differ, {} missing, {} new",
                           counted(pairs.size(), "file"), counts["equal"], counts["differs"],
                           counts["missing"], counts["new"]));
}

void diff(Session& session, const DiffChoice& choice) {
  std::error_code error;
  const bool a = std::filesystem::is_directory(pathOf(choice.a), error);
  const bool b = std::filesystem::is_directory(pathOf(choice.b), error);
  if (a != b) {
    throw Failure(fmt::format("{}: expected a folder, since {} is one",
                              aq::escaped(a ? choice.b : choice.a),
                              aq::escaped(a ? choice.a : choice.b)));
  }
  return a ? diffFolders(session, choice) : diffFiles(session, choice);
}

}  // namespace

void addDiff(CLI::App& program, Session& session) {
  const auto choice = std::make_shared<DiffChoice>();
  CLI::App* const command =
      addCommand(program, session, "diff", "Show how two files or folders differ",
                 "Ignores the files' own names and dates. Compares the names of their source\n"
                 "files and, with --dates, also the dates of the source files.\n\n"
                 "Examples:\n"
                 "  aqdata diff fly-over.sth.csv stamped.sth.csv --tolerance 0.01\n",
                 [&session, choice] { diff(session, *choice); });
  addFile(*command, choice->a, "A", "A file, or a folder");
  addFile(*command, choice->b, "B", "A file of the same kind, or another folder");
  command
      ->add_option("--tolerance", choice->tolerance,
                   "Treat numbers as equal up to this difference (0)")
      ->check(numberFromZero, "")
      ->option_text("D");
  command->add_flag("--dates", choice->dates, "Compare the dates of source files too");
  addJobs(*command, session);
}

}  // namespace aqdata
