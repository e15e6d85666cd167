#pragma once

#include <cstdint>
#include <memory>
#include <string>

#include "aq/core/collection.h"
#include "aq/core/time.h"

namespace aq {

/// The header of a microphone position file.
class AQ_HeaderMIC {
 public:
  std::string sFileType;
  std::string sFileName;
  std::shared_ptr<AQ_Time> aqFileDateTime = std::make_shared<AQ_Time>();
  std::string sProjectName;
  std::string sMicrophoneID;
  std::int32_t lNumberRecords = 0;  ///< unused: the file has no record count
  std::int16_t nOtherRecords = 0;
  std::shared_ptr<Collection<std::string>> cOtherRecords =
      std::make_shared<Collection<std::string>>();
  std::int16_t nCommentLines = 0;
  std::shared_ptr<Collection<std::string>> cCommentLines =
      std::make_shared<Collection<std::string>>();
};

}  // namespace aq
