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

/// The data of a file as rows, whatever its kind: what is shown, converted and compared.
struct Sheet {
  struct Row {
    std::int32_t number;            ///< of the record; the place of a position
    std::vector<Json> cells;        ///< one a column
    std::vector<Json> bands;        ///< one a band, of the lowest up; null where there is none
    std::vector<bool> masked = {};  ///< one a band; empty without a map

    [[nodiscard]] bool masks(std::size_t place) const {
      return place < masked.size() && masked[place];
    }
  };

  std::vector<std::string> columns = {};  ///< the first is the number's
  std::string ofBand = {};  ///< what a band's cell is, as in "level"; empty without bands
  std::int16_t low = 0;
  std::int16_t high = -1;
  std::vector<Row> rows = {};  ///< in the order of their numbers

  [[nodiscard]] bool hasBands() const { return !ofBand.empty(); }

  /// The band of a place in `Row::bands`.
  [[nodiscard]] std::int16_t band(std::size_t place) const {
    return static_cast<std::int16_t>(low + static_cast<std::int32_t>(place));
  }

  // Keep the rows whose number, and the bands, that lie in a range. Throw `Failure` when `file` has
  // none of them.
  void keepRows(Range range, const std::string& file);
  void keepBands(Range range, const std::string& file);

  /// Times stand twice, as text and in seconds: drops the columns whose names end so.
  void dropColumns(std::string_view ending);
};

/// The lowest and the highest band of all records; 0 and -1 when there is none.
[[nodiscard]] std::pair<std::int16_t, std::int16_t> bandsOf(
    const aq::AQ_SpectralTimeHistory& history);

[[nodiscard]] Sheet sheetOf(const Measurement& measurement);

/// What a file's header says, key by key, in its own order.
[[nodiscard]] Json headerOf(const Measurement& measurement);

/// Seconds to the digits that they were read with: those of a minute in single precision.
[[nodiscard]] double tidySeconds(double seconds);

/// A number of single precision as the shortest text of it reads.
[[nodiscard]] double tidy(float value);

}  // namespace aqdata
