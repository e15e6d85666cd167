#pragma once

#include <memory>
#include <string>
#include <string_view>

#include "aq/core/enumerations.h"
#include "aq/core/export.h"
#include "aq/files/header_ssr.h"
#include "aq/spectral/spectrum.h"
#include "aq/text/file_class.h"

namespace aq {

/// Writes and reads spectrum record files, one spectrum each (docs/formats/spectrum-record.md).
class AQ_API AQ_DataSSR : public FileClass {
 public:
  /// The file type that the first line names.
  static constexpr std::string_view kTitle = "Spectrum Record";

  /// Writes a spectrum, replacing the file; the header gets the file's name. Throws, and writes
  /// nothing, when there are no bands, or a band has no label or no level (`InvalidArgument`), a
  /// level is not a number (`TypeMismatch`) or not finite (`InvalidValue`), or there is no header
  /// (`ObjectNotSet`).
  AQ_DataMessage writeFile(const std::string& sFileName,
                           const std::shared_ptr<AQ_HeaderSSR>& aqHeader,
                           const AQ_Spectrum& spectrum);

  /// Reads a file into a new spectrum and a new header. If the header cannot be read,
  /// sets neither; if the labels or the levels cannot be read, sets only the header.
  AQ_DataMessage readFile(const std::string& sFileName, std::shared_ptr<AQ_Spectrum>& specNew,
                          std::shared_ptr<AQ_HeaderSSR>& ssrHeader);
  AQ_DataMessage readFile(const std::string& sFileName, std::shared_ptr<AQ_Spectrum>& specNew);

 private:
  std::shared_ptr<AQ_HeaderSSR> header_;
};

}  // namespace aq
