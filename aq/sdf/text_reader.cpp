#include "aq/sdf/text_reader.h"

#include <algorithm>
#include <cmath>
#include <optional>
#include <string_view>
#include <vector>

#include "aq/core/platform.h"
#include "aq/sdf/record_text.h"
#include "aq/sdf/text_form.h"
#include "aq/text/fields.h"
#include "aq/text/line_reader.h"
#include "aq/text/number_text.h"

namespace aq::sdf {
namespace {

/// Consecutive values, with their line numbers.
struct Values {
  std::optional<std::size_t> set;
  std::optional<std::size_t> trace;
  std::optional<std::size_t> scan;
  std::optional<std::size_t> points;
  std::optional<double> scanVariable;
  std::vector<double> y;
  std::vector<double> x;
  std::vector<std::pair<std::size_t, std::size_t>>
      lines;  // the number of values before a line, and the line's number
  std::size_t lastLine = 0;

  [[nodiscard]] bool isNamed() const { return set && trace && scan; }

  /// The line of the value at that index; `lastLine` if there is no such value.
  [[nodiscard]] std::size_t lineOf(std::size_t place) const {
    const auto after =
        std::upper_bound(lines.begin(), lines.end(), place,
                         [](std::size_t one, const auto& line) { return one < line.first; });
    return after == lines.begin() || place >= y.size() ? lastLine : (after - 1)->second;
  }
};

bool isSeparator(std::string_view line) {
  constexpr std::size_t kShortest = 3;
  return line.size() >= kShortest && std::string_view(".=-").find(line[0]) != line.npos &&
         line.find_first_not_of(line[0]) == line.npos;
}

/// Takes the numbers of a line; returns false if it has none or contains anything else.
bool numbersOf(std::string_view line, std::vector<double>& numbers) {
  numbers.clear();
  for (;;) {
    const std::size_t begin = line.find_first_not_of(" \t");
    if (begin == line.npos) return !numbers.empty();
    line.remove_prefix(begin);
    const std::string_view word = line.substr(0, line.find_first_of(" \t"));
    if (std::string_view("+-.0123456789nNiI").find(word[0]) == word.npos) return false;
    try {
      numbers.push_back(form::storedFrom(word));
    } catch (const Error&) {
      return false;
    }
    line.remove_prefix(word.size());
  }
}

class TextReader {
 public:
  explicit TextReader(const std::string& path) : lines_(path) {}

  void read() {
    while (lines_.next()) {
      const std::string_view line = trimmed(lines_.line());
      if (line.empty() || isSeparator(line)) continue;
      if (line.starts_with("SDF_")) {
        begin(line);
      } else if (numbersOf(line, numbers_)) {
        addNumbers();
      } else {
        field(namedValue(lines_.line()));
      }
    }
  }

  RecordText records;
  std::vector<Values> values;

 private:
  void begin(std::string_view line) {
    const AnyLayout* const layout = layoutNamed(line.substr(0, line.find_first_of(" \t:")));
    inValues_ = layout != nullptr && layout->type == RecordType::Y;
    inRecord_ = layout != nullptr && !inValues_;
    if (inValues_) values.emplace_back();
    if (inRecord_) records.begin(*layout);
  }

  void field(const NamedValue& found) {
    if (inRecord_) records.field(found.name, found.value, lines_.number());
    if (!inValues_) return;
    Values& last = values.back();
    const auto place = [&](std::string_view name, std::optional<std::size_t>& into) {
      if (upperCased(found.name) != upperCased(name)) return;
      into = convert<std::size_t>(found, [](std::string_view text) {
        const std::int32_t number = int32From(text);
        if (number < 0) throw Error(ErrorCode::TypeMismatch, "a negative number");
        return static_cast<std::size_t>(number);
      });
    };
    place(form::kData, last.set);
    place(form::kVector, last.trace);
    place(form::kScan, last.scan);
    place(form::kPoints, last.points);
    if (upperCased(found.name) == upperCased(form::kScanVariable)) {
      last.scanVariable = convert<double>(found, form::storedFrom);
    }
  }

  template <class Number, class Conversion>
  Number convert(const NamedValue& found, const Conversion& conversion) {
    try {
      return conversion(found.value);
    } catch (const Error& error) {
      const std::string expected = "a number for " + std::string(found.name);
      failRead(lines_.number(), 2, expectedFor(expected.c_str(), error), shown(found.value));
    }
  }

  /// Numbers before any heading, or after a record, are unnamed values.
  void addNumbers() {
    if (!inValues_) {
      inRecord_ = false;
      inValues_ = true;
      if (values.empty() || values.back().isNamed()) values.emplace_back();
    }
    Values& last = values.back();
    const bool pairs = last.lines.empty() ? numbers_.size() == 2 : !last.x.empty();
    last.lines.emplace_back(last.y.size(), lines_.number());
    last.lastLine = lines_.number();
    if (!pairs) {
      last.y.insert(last.y.end(), numbers_.begin(), numbers_.end());
      return;
    }
    if (numbers_.size() % 2 != 0) {
      failRead(lines_.number(), 0, "an x and a y", shown(lines_.line()));
    }
    for (std::size_t i = 0; i < numbers_.size(); i += 2) {
      last.x.push_back(numbers_[i]);
      last.y.push_back(numbers_[i + 1]);
    }
  }

  LineReader lines_;
  std::vector<double> numbers_;
  bool inRecord_ = false;
  bool inValues_ = false;
};

/// The records of the header file with the stem and folder of `path`.
RecordText recordsBeside(const std::string& path) {
  const std::size_t dot = path.size() - std::min(path.size(), platform::fileName(path).size());
  const std::size_t point = path.rfind('.');
  const std::string stem = path.substr(0, point == path.npos || point < dot ? path.npos : point);
  for (const char* const ending : {".HDR", ".hdr", ".Hdr"}) {
    try {
      TextReader headers(stem + ending);
      headers.read();
      return std::move(headers.records);
    } catch (const platform::SystemError&) {
      continue;
    } catch (const ReadFailure& failed) {
      const FileFailure& failure = failed.failure;
      failRead(0, 0,
               failure.expected + " in line " + std::to_string(failure.line) + " of " +
                   platform::fileName(stem + ending),
               failure.found);
    }
  }
  failRead(0, 0, "the headers of a recording, here or in " + platform::fileName(stem) + ".HDR",
           "none");
}

/// Numbers as doubles in the form that binary files store, after `before` zeros.
std::string stored(std::span<const double> numbers, std::size_t before, NumberType type) {
  std::string bytes((before + numbers.size()) * sizeof(double), '\0');
  char* at = bytes.data() + before * sizeof(double);
  for (const double number : numbers) {
    // A text file may write a float with as many digits as a double.
    putNumber(at, type == NumberType::Float ? static_cast<double>(floatOf(number)) : number);
    at += sizeof(double);
  }
  return bytes;
}

/// Assigns the values in a text file to the traces of the recording.
class Assignment {
 public:
  explicit Assignment(const Recording& recording) : recording_(recording) {
    const RecordList& records = recording.records();
    constexpr int kLongs = 3;
    const auto index = [&](const Field& field, const Field& old) {
      const Record& measurement = records.measurement();
      return measurement.has(old) ? records.integer(measurement, field, kLongs, old) : -1;
    };
    const std::int32_t start =
        index(kMeasurement["startFreqIndex"], kMeasurement["startFreqIndexOld"]);
    const std::int32_t stop =
        index(kMeasurement["stopFreqIndex"], kMeasurement["stopFreqIndexOld"]);
    if (start < 0 || stop < start) return;
    start_ = static_cast<std::size_t>(start);
    free_ = static_cast<std::size_t>(stop - start) + 1;
  }

  /// Assigns values that name their trace.
  void addNamed(const Values& values) {
    const TraceSet* const set =
        *values.set < recording_.sets().size() ? &recording_.sets()[*values.set] : nullptr;
    if (set == nullptr) {
      failRead(values.lastLine, 0,
               "a data header number below " + std::to_string(recording_.sets().size()),
               std::to_string(*values.set));
    }
    const std::size_t count = values.y.size();
    const std::size_t wanted = values.points.value_or(set->points);
    const bool free = count != wanted && count != set->points && count == free_;
    if (set->valuesOfPoint == 1 && count != wanted && count != set->points && !free) {
      failRead(values.lineOf(wanted), 0, std::to_string(wanted) + " values", std::to_string(count));
    }
    add(values, *set, {*values.set, *values.trace, *values.scan}, 0, count, free ? start_ : 0);
  }

  /// Assigns values that do not name their trace.
  void addInTurn(const Values& values, const WantedTrace& wanted) {
    const std::size_t count = values.y.size();
    if (count == countOfAll()) return addAll(values);
    const TraceSet& set = recording_.sets().at(wanted.set);
    const bool whole = set.points != 0 && count % set.points == 0;
    const std::size_t points = whole || free_ == 0 ? set.points : free_;
    const std::size_t scans = points == 0 ? 0 : count / points;
    if (scans == 0 || count % points != 0 || scans > recording_.scansOf(set)) {
      const std::size_t complete = set.points == 0 ? 0 : count / set.points;
      const std::size_t most = std::min(complete, recording_.scansOf(set)) * set.points;
      failRead(values.lineOf(most), 0, "values of " + std::to_string(set.points) + " points",
               std::to_string(count) + " values");
    }
    for (std::size_t scan = 0; scan < scans; ++scan) {
      add(values, set, {wanted.set, wanted.trace, scan}, scan * points, points, whole ? 0 : start_);
    }
  }

  Recording::TextTraces traces;

 private:
  [[nodiscard]] std::uint64_t countOfAll() const {
    std::uint64_t all = 0;
    for (const TraceSet& set : recording_.sets()) {
      const std::uint64_t scans = recording_.scansOf(set);
      all = plus(all, times(times(set.points, set.valuesOfPoint), times(set.traces, scans)));
    }
    return all;
  }

  /// Assigns values to all traces in file order.
  void addAll(const Values& values) {
    std::size_t at = 0;
    const auto addScan = [&](const TraceSet& set, std::size_t scan) {
      for (std::size_t trace = 0; trace < set.traces; ++trace) {
        const std::size_t points = set.points * set.valuesOfPoint;
        add(values, set, {recording_.placeOf(set), trace, scan}, at, points, 0);
        at += points;
      }
    };
    const auto addScans = [&](std::size_t first, std::size_t end, bool scanned) {
      for (const TraceSet& set : recording_.sets()) {
        const std::size_t last = std::min(end, recording_.scansOf(set));
        for (std::size_t scan = first; set.scanned == scanned && scan < last; ++scan) {
          addScan(set, scan);
        }
      }
    };
    std::size_t scans = 0;
    for (const TraceSet& set : recording_.sets()) scans = std::max(scans, recording_.scansOf(set));
    const std::size_t step = recording_.scans().byData ? scans : 1;
    for (std::size_t scan = 0; scan < scans; scan += step) addScans(scan, scan + step, true);
    addScans(0, 1, false);
  }

  void add(const Values& values, const TraceSet& set,
           const std::tuple<std::size_t, std::size_t, std::size_t>& key, std::size_t at,
           std::size_t count, std::size_t before) {
    TextTrace trace;
    trace.values = stored(std::span(values.y).subspan(at, count), before, set.type);
    if (!values.x.empty()) {
      trace.x = stored(std::span(values.x).subspan(at, count), before, NumberType::Double);
    }
    trace.scanVariable = values.scanVariable;
    if (const auto variable = recording_.scanVariable(set);
        variable && trace.scanVariable && variable->type == NumberType::Float) {
      trace.scanVariable = static_cast<double>(floatOf(*trace.scanVariable));
    }
    if (!traces.emplace(key, std::move(trace)).second) {
      failRead(values.lastLine, 0, "values of another trace or scan", "those of one given before");
    }
  }

  const Recording& recording_;
  std::size_t start_ = 0;
  std::size_t free_ = 0;  // alias-free points; 0 if unknown
};

/// All unnamed values, one after another; ignores separators and headings among them. Nothing if
/// there are none.
std::optional<Values> unnamedOf(const std::vector<Values>& values) {
  std::optional<Values> all;
  for (const Values& one : values) {
    if (one.isNamed() || one.y.empty()) continue;
    if (!all) {
      all = one;
      continue;
    }
    for (const auto& [before, line] : one.lines)
      all->lines.emplace_back(all->y.size() + before, line);
    all->y.insert(all->y.end(), one.y.begin(), one.y.end());
    all->x.insert(all->x.end(), one.x.begin(), one.x.end());
    all->lastLine = one.lastLine;
  }
  if (all && all->x.size() != all->y.size()) all->x.clear();
  return all;
}

}  // namespace

Recording textRecording(const std::string& path,
                        const std::function<WantedTrace(const Recording&)>& wanted) {
  TextReader text(path);
  text.read();
  if (text.values.empty()) failRead(0, 0, "values of a recording", "none");
  if (text.records.empty()) text.records = recordsBeside(path);
  const Recording headers(text.records.take(), {});
  Assignment named(headers);
  for (const Values& values : text.values) {
    if (values.isNamed()) named.addNamed(values);
  }
  const auto unnamed = unnamedOf(text.values);
  if (unnamed && !named.traces.empty()) {
    failRead(unnamed->lineOf(0), 0, "data, vector and scan numbers, as other values have", "none");
  }
  Recording recording(text.records.take(), std::move(named.traces));
  if (!unnamed) return recording;
  Assignment inTurn(headers);
  inTurn.addInTurn(*unnamed, wanted(recording));
  return {text.records.take(), std::move(inTurn.traces)};
}

}  // namespace aq::sdf
