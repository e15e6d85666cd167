#pragma once

#include <memory>
#include <string>
#include <string_view>

#include "aq/core/enumerations.h"
#include "aq/core/export.h"
#include "aq/geometry/geometry_time_history.h"
#include "aq/geometry/header_gth.h"
#include "aq/text/file_class.h"

namespace aq {

/// Writes and reads geometric time history files (docs/formats/geometric-time-history.md).
class AQ_API AQ_DataGTH : public FileClass {
 public:
  /// The file type that the first line names.
  static constexpr std::string_view kTitle = "Geometric Time-History";

  /// Writes points 1 to `Count`, replacing the file; the header gets the file's name and the number
  /// of points. Throws, and writes nothing, for more than 32767 points (`Overflow`), a missing
  /// point (`InvalidArgument`), a time of day that cannot be written as hh:mm:ss or a number that
  /// is not finite (`InvalidValue`), no header, no microphone position or a null point
  /// (`ObjectNotSet`).
  void writeFile(const std::string& sFileName, const std::shared_ptr<AQ_HeaderGTH>& aqHeader,
                 const AQ_GeometryTimeHistory& aqTimeHistory, AQ_DataMessage& result);

  /// Reads a file into a new header and a new history. If the header cannot be read, sets
  /// neither; if a point cannot be read, sets only the header.
  void readFile(const std::string& sFileName, std::shared_ptr<AQ_HeaderGTH>& aqHeader,
                std::shared_ptr<AQ_GeometryTimeHistory>& GTH, AQ_DataMessage& result);

 private:
  std::shared_ptr<AQ_HeaderGTH> header_;
};

}  // namespace aq
