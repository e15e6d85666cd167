#pragma once

#include <cmath>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <set>
#include <string>

#include "aq/check/header_check.h"
#include "aq/check/line_shapes.h"
#include "aq/check/reporter.h"
#include "aq/core/time.h"
#include "aq/detail/band_block.h"
#include "aq/text/number_text.h"

namespace aq {

/// Maps the records of a readable file to its data lines. Also reports irregular lines and record
/// numbers.
class RecordLines {
 public:
  /// Takes the data lines of a file, skipping its header.
  RecordLines(const std::string& path, const HeaderCheck& header, const DataColumns& columns,
              const Reporter& report);

  /// False if decimal commas made every value wrong; then no records are listed.
  [[nodiscard]] bool readable() const { return readable_; }

  /// The number of data lines.
  [[nodiscard]] std::size_t count() const { return count_; }

  /// The lowest and the highest record number. Requires at least one record.
  [[nodiscard]] std::int32_t low() const { return lines_.first(); }
  [[nodiscard]] std::int32_t high() const {
    return lines_.first() + static_cast<std::int32_t>(lines_.size()) - 1;
  }

  /// Calls `visit(record, line)` for every record, in ascending order; if a record appears in
  /// several lines, `line` is the last of them.
  template <class Visit>
  void forEach(const Visit& visit) const {
    const std::size_t* line = lines_.all().data();
    for (std::int32_t record = low(); record <= high(); ++record, ++line) {
      if (*line != 0) visit(static_cast<std::int16_t>(record), *line);
    }
  }

 private:
  void see(std::int16_t record, std::size_t line, const Reporter& report);
  void reportGaps(const Reporter& report) const;

  BandBlock<std::size_t> lines_;  // line numbers by record number; 0 if missing
  bool readable_ = true;
  std::size_t count_ = 0;
  std::size_t setBegins_ = 0;  // the first line of this data set
  std::int32_t first_ = 0;     // the record number in that line
  std::int32_t before_ = 0;    // the record number in the previous line
};

/// Seconds as text, rounded to milliseconds.
inline std::string secondsText(double seconds) {
  return numberText(std::round(seconds * 1e3) / 1e3) + " s";
}

/// Reports and returns the records whose time of day, `timeOf(record)` in seconds, does not follow
/// from that of an earlier record at `recordLength` seconds per record. A single odd record is
/// reported once, and a lasting shift only at the record where it starts.
template <class Records, class TimeOf>
std::set<std::int32_t> checkTimeSteps(const Records& records, const TimeOf& timeOf,
                                      const Reporter& report, double recordLength = 0.5) {
  constexpr double kTolerance = 0.0101;  // s; times of day may be rounded to hundredths
  struct Seen {
    std::int32_t record;
    double time;
  };
  std::optional<Seen> good;
  std::optional<Seen> odd;  // later times may turn out to continue from it
  std::set<std::int32_t> wrong;
  records.forEach([&](std::int16_t record, std::size_t line) {
    const Seen here{record, timeOf(record)};
    const auto expectedAfter = [&](const Seen& seen) {
      return (record - seen.record) * recordLength;
    };
    const auto follows = [&](const std::optional<Seen>& seen) {
      const double off =
          seen ? here.time - seen->time - expectedAfter(*seen) : kSecondsPerDay / 2.0;
      return std::abs(std::remainder(off, kSecondsPerDay)) <= kTolerance;
    };
    if (!good || follows(good) || follows(odd)) {
      good = here;
      odd.reset();
      return;
    }
    wrong.insert(record);
    odd = here;
    report(Kind::TimeStep, {.line = line, .field = 2, .record = record},
           "expected " + secondsText(expectedAfter(*good)) + " after record " +
               std::to_string(good->record) + ", found " +
               secondsText(std::remainder(here.time - good->time, kSecondsPerDay)));
  });
  return wrong;
}

}  // namespace aq
