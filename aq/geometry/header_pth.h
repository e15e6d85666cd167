#pragma once

#include <cstdint>
#include <memory>
#include <string>

#include "aq/core/collection.h"
#include "aq/core/time.h"

namespace aq {

/// The header of a position time history file.
class AQ_HeaderPTH {
 public:
  std::string sFileType;
  std::string sFileName;
  std::shared_ptr<AQ_Time> aqFileDateTime = std::make_shared<AQ_Time>();
  std::string sProjectName;
  std::string sGeneratedBy;
  std::string sTSPIFileName;      ///< the tracking file that the positions were made from
  std::string sTSPIFileDateTime;  ///< as read; the writer gets it from the file information service
  std::int32_t lNumberRecords = 0;
  std::int16_t nOtherRecords = 0;  ///< as read; the writer counts `cOtherRecords`
  std::shared_ptr<Collection<std::string>> cOtherRecords =
      std::make_shared<Collection<std::string>>();
  std::int16_t nCommentLines = 0;  ///< as read; the writer counts `cCommentLines`
  std::shared_ptr<Collection<std::string>> cCommentLines =
      std::make_shared<Collection<std::string>>();
};

}  // namespace aq
