#pragma once

#include <memory>
#include <string>
#include <string_view>

#include "aq/core/collection.h"
#include "aq/core/enumerations.h"
#include "aq/core/export.h"
#include "aq/files/header_sth.h"
#include "aq/spectral/spectral_time_history.h"
#include "aq/text/file_class.h"

namespace aq {

/// Writes and reads spectral time history files (docs/formats/spectral-time-history.md).
class AQ_API AQ_DataSTH : public FileClass {
 public:
  /// The file type that the first line names.
  static constexpr std::string_view kTitle = "Spectral Time-History";

  /// Writes records `LoRec` to `HiRec`, replacing the file; the header gets the file's name.
  /// Throws, and writes nothing, if there are no records, or a record or a level is missing
  /// (`InvalidArgument`), a level is not a number (`TypeMismatch`), a number is not finite or a
  /// time of day cannot be written as hh:mm:ss (`InvalidValue`), or an object is missing
  /// (`ObjectNotSet`).
  AQ_DataMessage writeFile(const std::string& sFileName,
                           const std::shared_ptr<AQ_HeaderSTH>& aqHeader,
                           AQ_SpectralTimeHistory& aqTimeHistory);

  /// Reads a file into a new header and a new history. If the header cannot be read, sets
  /// neither; if a record cannot be read, sets only the header.
  AQ_DataMessage readFile(const std::string& sFileName, std::shared_ptr<AQ_HeaderSTH>& aqHeader,
                          std::shared_ptr<AQ_SpectralTimeHistory>& STH);

  /// The header's lines, unchanged, without the column headings; all lines of a file that has no
  /// column headings. Returns false and leaves `colHeader` unchanged if the file cannot be read, is
  /// of another kind or ends with its column headings.
  bool getRawHeader(const std::string& sFileName,
                    std::shared_ptr<Collection<std::string>>& colHeader);

 private:
  std::shared_ptr<AQ_HeaderSTH> header_;
};

}  // namespace aq
