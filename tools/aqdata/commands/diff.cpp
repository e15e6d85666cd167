#include <fmt/format.h>

#include <algorithm>
#include <cmath>
#include <map>

#include "tools/aqdata/measurement.h"
#include "tools/aqdata/program.h"
#include "tools/aqdata/sheet.h"
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
  double largest = -1;      // difference of numbers; of other cells, the first one is shown
  std::int32_t record = 0;  // its record
  Json a = {};
  Json b = {};

  void compare(const Json& one, const Json& other, std::int32_t number, double tolerance) {
    const bool numbers = one.is_number() && other.is_number();
    const double difference = numbers ? std::abs(one.get<double>() - other.get<double>()) : 0;
    constexpr double kRounding = 1e-9;  // 0.01 apart is 0.01 apart
    if (numbers ? difference <= tolerance + kRounding : one == other) return;
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

  [[nodiscard]] bool empty() const {
    return header.empty() && onlyInA.empty() && onlyInB.empty() && columns.empty() && bands.empty();
  }
};

/// The files' own names and dates say where and when the data were written, not what they are;
/// dates of source files are compared on request.
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

/// The cell of a band that one file may lack.
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

  const Sheet& a_;
  const Sheet& b_;
  double tolerance_;
  std::vector<Column> columns_;
  std::map<std::int32_t, Column> bands_;
};

/// As in "1 to 3, 7".
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
  session.print(fmt::format("{}: differs in {}, {}as in {}: {} and {}\n", name,
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

void diff(Session& session, const DiffChoice& choice) {
  const Measurement a = openFile(choice.a);
  const Measurement b = openFile(choice.b);
  if (a.data.index() != b.data.index()) {
    throw Failure(fmt::format("{} is a {} file, {} a {} file", aq::escaped(choice.a),
                              kindText(a.kind), aq::escaped(choice.b), kindText(b.kind)));
  }
  Difference difference;
  compareHeaders(headerOf(a), headerOf(b), choice.dates, difference);
  Sheet sheetA = sheetOf(a);
  Sheet sheetB = sheetOf(b);
  for (Sheet* const sheet : {&sheetA, &sheetB}) sheet->dropColumns("time");
  Comparison(sheetA, sheetB, choice.tolerance).run(difference);
  if (!difference.empty()) session.end(kFindings);
  if (session.json) return printJson(session, choice, difference);
  print(session, difference);
  if (difference.empty()) session.tell("no difference");
}

/// A check of the option's text.
std::string tolerance(const std::string& text) {
  const std::string fault = finiteNumber(text);
  return fault.empty() && text.starts_with('-') ? "expected 0 or more, found " + text : fault;
}

}  // namespace

void addDiff(CLI::App& program, Session& session) {
  const auto choice = std::make_shared<DiffChoice>();
  CLI::App* const command =
      addCommand(program, session, "diff", "Show how two files differ",
                 "The files' own names and dates are no difference, and those of the files that\n"
                 "they were made from are one only with --dates.\n\n"
                 "Examples:\n"
                 "  aqdata diff fly-over.sth.csv stamped.sth.csv --tolerance 0.01\n",
                 [&session, choice] { diff(session, *choice); });
  addFile(*command, choice->a, "A", "A file");
  addFile(*command, choice->b, "B", "Another of the same kind");
  command->add_option("--tolerance", choice->tolerance, "Numbers this far apart are equal (0)")
      ->check(tolerance, "")
      ->option_text("D");
  command->add_flag("--dates", choice->dates, "Compare the dates of source files too");
}

}  // namespace aqdata
