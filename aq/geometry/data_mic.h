#pragma once

#include <memory>
#include <string>
#include <string_view>

#include "aq/core/enumerations.h"
#include "aq/core/export.h"
#include "aq/geometry/header_mic.h"
#include "aq/geometry/microphone.h"
#include "aq/text/file_class.h"

namespace aq {

/// Reads microphone position files (docs/formats/microphone-position.md).
class AQ_API AQ_DataMIC : public FileClass {
 public:
  /// The file type that the first line names.
  static constexpr std::string_view kTitle = "Microphone Position File";

  /// Reads a file into a new header and into the caller's microphone. If the header cannot be read,
  /// neither changes. If the microphone's line cannot be read, the header is set, and so are the
  /// coordinates read before the failure.
  void readFile(const std::string& sFileName, std::shared_ptr<AQ_HeaderMIC>& aqHeader,
                const std::shared_ptr<AQ_Microphone>& MIC, AQ_DataMessage& result);

 private:
  std::shared_ptr<AQ_HeaderMIC> header_;
};

}  // namespace aq
