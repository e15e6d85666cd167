#pragma once

#include <memory>
#include <string>

#include "aq/core/collection.h"
#include "aq/core/time.h"

namespace aq {

/// The descriptive part of the header of a spectral time history file.
class AQ_HeaderSTH {
 public:
  std::string sAdjustmentCode;  ///< the adjustment applied to the levels, as free text
  std::string sGeneratedBy;
  std::string sGenerationFile;  ///< the file from which this one was generated
  std::shared_ptr<AQ_Time> aqGenerationDateTime = std::make_shared<AQ_Time>();
  std::string sProjectName;
  std::string sMicrophoneID;
  std::shared_ptr<Collection<std::string>> cCommentLines =
      std::make_shared<Collection<std::string>>();
  std::shared_ptr<Collection<std::string>> cOtherRecords =
      std::make_shared<Collection<std::string>>();
  std::string sFileName;
  std::shared_ptr<AQ_Time> aqFileDateTime = std::make_shared<AQ_Time>();
};

}  // namespace aq
