#pragma once

#include <memory>
#include <string>
#include <string_view>

#include "aq/core/enumerations.h"
#include "aq/core/export.h"
#include "aq/geometry/header_pth.h"
#include "aq/geometry/position_time_history.h"
#include "aq/text/file_class.h"

namespace aq {

/// Writes and reads position time history files (docs/formats/position-time-history.md).
class AQ_API AQ_DataPTH : public FileClass {
 public:
  /// The file type that the first line names.
  static constexpr std::string_view kTitle = "Position Time-History";

  /// Writes a history, replacing the file; the header gets the file's name and the number of
  /// positions. Throws, and writes nothing, for more than 32767 positions (`Overflow`), a time of
  /// day that cannot be written as hh:mm:ss or a coordinate that is not finite (`InvalidValue`), no
  /// header or a null position (`ObjectNotSet`).
  void writeFile(const std::string& sFileName, const std::shared_ptr<AQ_HeaderPTH>& aqHeader,
                 const AQ_PositionTimeHistory& aqTimeHistory, AQ_DataMessage& result);

  /// Reads a file into a new header and a new history. If the header cannot be read, sets
  /// neither; if a position cannot be read, sets only the header.
  void readFile(const std::string& sFileName, std::shared_ptr<AQ_HeaderPTH>& aqHeader,
                std::shared_ptr<AQ_PositionTimeHistory>& PTH, AQ_DataMessage& result);

 private:
  std::shared_ptr<AQ_HeaderPTH> header_;
};

}  // namespace aq
