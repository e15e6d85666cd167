#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>

#include "aq/core/enumerations.h"
#include "aq/core/export.h"
#include "aq/core/variant.h"
#include "aq/files/header_sth.h"
#include "aq/spectral/spectral_time_history.h"
#include "aq/text/file_class.h"

namespace aq {

class LineReader;

/// Writes and reads fixed-column spectral time histories (docs/formats/fixed-columns.md). The
/// format keeps record dates, bands without a level and the reference time type, but not file
/// dates.
class AQ_API AQ_DataSPC : public FileClass {
 public:
  /// The first line of a file begins with these bytes.
  static constexpr std::string_view kBeginning = "SPC                 ";

  /// Sets the header to write, shared with the caller; without one, the header fields are empty.
  /// Reading a file replaces it.
  void setHeader(const std::shared_ptr<AQ_HeaderSTH>& aqHeader) { header_ = aqHeader; }

  /// Seconds from one record to the next, initially 0.5. Reading a file sets it. Setting throws
  /// and keeps the old value if the number is not above 0 and below 1000 (`InvalidValue`) or if the
  /// value is not a number (`TypeMismatch`).
  [[nodiscard]] double RecordLength() const { return settings_.recordLength; }
  void RecordLength(const Variant& seconds);

  // Which part of a history is written: 0, the default, means the first or last record stored, or
  // the lowest or highest band of all records written. Reading a file sets these four.
  [[nodiscard]] std::int16_t NumberFirstRecord() const { return settings_.first; }
  void NumberFirstRecord(std::int16_t nRecord) { settings_.first = nRecord; }
  [[nodiscard]] std::int16_t NumberLastRecord() const { return settings_.last; }
  void NumberLastRecord(std::int16_t nRecord) { settings_.last = nRecord; }
  [[nodiscard]] std::int16_t BandLow() const { return settings_.low; }
  void BandLow(std::int16_t nBand) { settings_.low = nBand; }
  [[nodiscard]] std::int16_t BandHigh() const { return settings_.high; }
  void BandHigh(std::int16_t nBand) { settings_.high = nBand; }

  /// Writes the chosen part, replacing the file. Throws, and writes nothing:
  /// - `InvalidArgument` if there are no records, or one in the chosen part is missing;
  /// - `InvalidValue` if there are no levels and the bands are not set, if a level or a time does
  ///   not fit its columns, if the record length rounds to 0 or 1000 s, if an enumeration value has
  ///   no word, if a band is outside 2 to 50, if a last record or band is below the first, if a
  ///   header field has a line break or, outside other records and comments, a tab, or if there are
  ///   more than 32767 other records or comments;
  /// - `TypeMismatch` if a level is not a number;
  /// - `Overflow` if a date is outside the years 1 to 9999;
  /// - `ObjectNotSet` if a spectrum is null.
  AQ_DataMessage writeFile(const std::string& sFileName, AQ_SpectralTimeHistory& aqTimeHistory);

  /// Reads a file into a new header and a new history. If the header cannot be read, sets nothing;
  /// if a record cannot be read, sets only the header and the settings.
  AQ_DataMessage readFile(const std::string& sFileName, std::shared_ptr<AQ_HeaderSTH>& aqHeader,
                          std::shared_ptr<AQ_SpectralTimeHistory>& STH);

 private:
  struct Settings {
    double recordLength = 0.5;
    std::int16_t first = 0;
    std::int16_t last = 0;
    std::int16_t low = 0;
    std::int16_t high = 0;
  };
  template <class Lines>
  static void header(Lines& lines, AQ_HeaderSTH& header, AQ_SpectralTimeHistory& history,
                     Settings& settings);
  static void readRecords(LineReader& lines, const Settings& part, AQ_SpectralTimeHistory& history);
  [[nodiscard]] Settings chosen(const AQ_SpectralTimeHistory& history) const;

  std::shared_ptr<AQ_HeaderSTH> header_;
  Settings settings_;
};

/// Whether a file can restore the dates of a history's records, which requires that they start with
/// the date of `startTime` and advance by a day each time the time of day falls back. A record
/// without a date counts as restorable. Throws `ObjectNotSet` if a spectrum is missing.
[[nodiscard]] AQ_API bool keepsDates(AQ_SpectralTimeHistory& history);

}  // namespace aq
