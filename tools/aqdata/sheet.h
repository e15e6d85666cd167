#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "tools/aqdata/measurement.h"
#include "tools/aqdata/session.h"
#include "tools/aqdata/text.h"

namespace aqdata {

/// The data of a file of any kind as rows, to show, convert and compare.
struct Sheet {
  struct Row {
    std::int32_t number;            ///< record number or index of a position; 1 for a single row
    std::vector<Json> cells;        ///< one per column
    std::vector<Json> bands;        ///< one per band from the lowest; null for a missing level
    std::vector<bool> masked = {};  ///< one per band; empty without a map

    [[nodiscard]] bool masks(std::size_t place) const {
      return place < masked.size() && masked[place];
    }
  };

  std::vector<std::string> columns = {};  ///< the first column holds `Row::number`
  std::string ofBand = {};  ///< what a band's cell holds, such as "mask"; empty without bands
  std::int16_t low = 0;
  std::int16_t high = -1;
  std::vector<Row> rows = {};  ///< in ascending order of their numbers

  [[nodiscard]] bool hasBands() const { return !ofBand.empty(); }

  /// The band at an index of `Row::bands`.
  [[nodiscard]] std::int16_t band(std::size_t place) const {
    return static_cast<std::int16_t>(low + static_cast<std::int32_t>(place));
  }

  // Keep the rows, or the bands, whose numbers lie in a range. Throw `Failure` if `file` has none
  // of them.
  void keepRows(Range range, const std::string& file);
  void keepBands(Range range, const std::string& file);

  /// Drops the columns whose names have this ending.
  void dropColumns(std::string_view ending);
};

/// The lowest and the highest band of all records; 0 and -1 without records.
[[nodiscard]] std::pair<std::int16_t, std::int16_t> bandsOf(
    const aq::AQ_SpectralTimeHistory& history);

[[nodiscard]] Sheet sheetOf(const Measurement& measurement);

/// The content of a file's header by key, in the order in which it is shown.
[[nodiscard]] Json headerOf(const Measurement& measurement);

/// All keys that occur in the header of some kind of file.
[[nodiscard]] std::vector<std::string> headerKeys();

/// Seconds rounded to five decimals, since the seconds in files are read in single precision.
[[nodiscard]] double tidySeconds(double seconds);

/// The double with the same shortest text as a single-precision number.
[[nodiscard]] double tidy(float value);

}  // namespace aqdata
