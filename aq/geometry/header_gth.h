#pragma once

#include <cstdint>
#include <memory>
#include <string>

#include "aq/core/collection.h"
#include "aq/core/time.h"
#include "aq/geometry/position.h"

namespace aq {

/// The header of a geometric time history file. It names the three files that the geometry was
/// computed from; the dates of these files are kept as read, but the writer takes them from the
/// file information service.
class AQ_HeaderGTH {
 public:
  std::string FileType;
  std::string GTHFileName;
  std::shared_ptr<AQ_Time> GTHFileDateTime = std::make_shared<AQ_Time>();
  std::string ProjectName;
  std::string GeneratedBy;
  std::string MicrophoneID;
  std::shared_ptr<AQ_Position> MicrophonePosition = std::make_shared<AQ_Position>();
  float Temperature = 0;  ///< air temperature, in degrees Celsius or the unit used in its file
  std::string STHFileName;
  std::string STHFileDateTime;
  std::string PTHFileName;
  std::string PTHFileDateTime;
  std::string MICFileName;
  std::string MICFileDateTime;
  std::int32_t NumberRecords = 0;
  std::int16_t OtherRecords = 0;  ///< as read; the writer counts `colOtherRecords`
  std::shared_ptr<Collection<std::string>> colOtherRecords =
      std::make_shared<Collection<std::string>>();
  std::int16_t nCommentLines = 0;  ///< as read; the writer counts `colCommentLines`
  std::shared_ptr<Collection<std::string>> colCommentLines =
      std::make_shared<Collection<std::string>>();
};

}  // namespace aq
