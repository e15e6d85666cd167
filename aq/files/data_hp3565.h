#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <utility>

#include "aq/core/collection.h"
#include "aq/core/enumerations.h"
#include "aq/core/export.h"
#include "aq/files/header_sth.h"
#include "aq/spectral/spectral_time_history.h"
#include "aq/text/file_class.h"

namespace aq {
namespace sdf {
class Recording;
}

/// Reads the recordings of an analyzer, in the Standard Data Format, as spectral time histories:
/// one-third-octave data band by band, narrow-band auto power summed into one-third-octave bands
/// (docs/formats/analyzer-recording.md). Notes for users of the levels, such as the unit, the
/// calibration and any overload, become comment lines in the header.
class AQ_API AQ_DataHP3565 : public FileClass {
 public:
  /// Lists the names, without the folder, of the files in an analyzer's folder: names that begin
  /// with INDEX, those that begin with TIMEDAT, and others that end in .DAT. Ignores case,
  /// including when sorting. Does not list folders. Changes nothing if the folder cannot be read.
  AQ_DataMessage readDirectory(const std::string& sDirectory,
                               std::shared_ptr<Collection<std::string>>& colIndex,
                               std::shared_ptr<Collection<std::string>>& colTimeDat,
                               std::shared_ptr<Collection<std::string>>& colRecordings);

  /// Writes a recording as a text file, with the external converter if one is set. A failure
  /// creates no text file and leaves an existing one unchanged. Never replaces a recording.
  AQ_DataMessage DAT_to_ASC(const std::string& sDatFile, const std::string& sAscFile);

  /// Reads a recording from a text file. If that file has only values, takes the headers from the
  /// .HDR file of the same name in the same folder. A failure sets neither object.
  AQ_DataMessage ParseASC(const std::string& sAscFile, std::shared_ptr<AQ_HeaderSTH>& aqHeader,
                          std::shared_ptr<AQ_SpectralTimeHistory>& STH);

  /// Reads a recording. A failure sets neither object.
  AQ_DataMessage readFile(const std::string& sDatFile, std::shared_ptr<AQ_HeaderSTH>& aqHeader,
                          std::shared_ptr<AQ_SpectralTimeHistory>& STH);

  /// The path of an external converter, which is run without a shell; empty for the built-in one.
  [[nodiscard]] const std::string& SDFPRINT() const { return converter_; }
  void SDFPRINT(std::string path) { converter_ = std::move(path); }

  /// The trace to read from each scan, counted from 1. Reading fails if the recording has no such
  /// trace.
  [[nodiscard]] std::int16_t Channel() const { return channel_; }
  void Channel(std::int16_t channel) { channel_ = channel; }

  /// Seconds from one record to the next if scans have no times. Throws `InvalidValue` for a value
  /// that is not finite or not above 0.
  [[nodiscard]] double RecordLength() const { return recordLength_; }
  void RecordLength(double seconds);

  /// Decibels added to every level. Throws `InvalidValue` for a value that is not finite.
  [[nodiscard]] double CalAdj() const { return calibration_; }
  void CalAdj(double decibels);

 private:
  void take(const sdf::Recording& recording, const std::string& name,
            std::shared_ptr<AQ_HeaderSTH>& aqHeader,
            std::shared_ptr<AQ_SpectralTimeHistory>& STH) const;

  std::string converter_;
  std::int16_t channel_ = 1;
  double recordLength_ = 0.5;
  double calibration_ = 0;
};

}  // namespace aq
