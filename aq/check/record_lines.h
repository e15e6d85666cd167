#pragma once

#include <cmath>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>

#include "aq/check/header_check.h"
#include "aq/check/reporter.h"
#include "aq/core/time.h"
#include "aq/detail/band_block.h"
#include "aq/text/number_text.h"

namespace aq {

/// Which record stands in which data line of a file that reads. Reports what is odd about the
/// numbers on the way.
class RecordLines {
 public:
  /// Passes the header; a data line has `fields` fields at the most.
  RecordLines(const std::string& path, const HeaderCheck& header, std::size_t fields,
              const Reporter& report);

  /// How many data lines there are.
  [[nodiscard]] std::size_t count() const { return count_; }

  /// The lowest and the highest record number; there is a record.
  [[nodiscard]] std::int32_t low() const { return lines_.first(); }
  [[nodiscard]] std::int32_t high() const {
    return lines_.first() + static_cast<std::int32_t>(lines_.size()) - 1;
  }

  /// Calls `visit(record, line)` for every record there is, in the order of their numbers; of a
  /// record in several lines, it is the last.
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

  BandBlock<std::size_t> lines_;  // by record number; 0 for a number that is left out
  std::size_t count_ = 0;
  std::size_t setBegins_ = 0;  // the first line of this data set
  std::int32_t first_ = 0;     // its number
  std::int32_t before_ = 0;    // the number in the line before
};

/// Seconds as a person reads them: times of day in single precision hold no more.
inline std::string secondsText(double seconds) {
  return numberText(std::round(seconds * 1e3) / 1e3) + " s";
}

/// Reports records whose time of day, which `timeOf(record)` gives, is not half a second a record
/// after that of the record before.
template <class TimeOf>
void checkTimeSteps(const RecordLines& records, const TimeOf& timeOf, const Reporter& report) {
  constexpr double kTolerance = 0.0101;  // a written time of day keeps hundredths
  std::optional<std::pair<std::int32_t, double>> before;
  records.forEach([&](std::int16_t record, std::size_t line) {
    const double time = timeOf(record);
    if (before) {
      const double expected = (record - before->first) * 0.5;
      const double step = std::remainder(time - before->second, kSecondsPerDay);
      if (std::abs(std::remainder(step - expected, kSecondsPerDay)) > kTolerance) {
        report(Kind::TimeStep, {.line = line, .field = 2, .record = record},
               "expected " + secondsText(expected) + " after record " +
                   std::to_string(before->first) + ", found " + secondsText(step));
      }
    }
    before = {record, time};
  });
}

}  // namespace aq
