#pragma once

#include <cstdint>
#include <memory>
#include <string>

#include "aq/core/collection.h"
#include "aq/core/time.h"

namespace aq {

/// The header of a masking map file.
class AQ_HeaderMask {
 public:
  std::string sFileType;
  std::string sFileName;
  std::shared_ptr<AQ_Time> aqFileDateTime = std::make_shared<AQ_Time>();
  std::int32_t lNumberRows = 0;
  std::int16_t iBandLow = 0;
  std::int16_t iBandHigh = 0;
  std::string sGeneratedBy;
  std::string sGenerationFile;
  std::shared_ptr<AQ_Time> aqGenerationDateTime = std::make_shared<AQ_Time>();
  std::int16_t nOtherRecords = 0;  ///< as read; the writer counts `cOtherRecords`
  std::shared_ptr<Collection<std::string>> cOtherRecords =
      std::make_shared<Collection<std::string>>();
  std::int16_t nCommentLines = 0;  ///< as read; the writer counts `cCommentLines`
  std::shared_ptr<Collection<std::string>> cCommentLines =
      std::make_shared<Collection<std::string>>();
  std::string sColumnLabels;  ///< as read; the writer makes them from the bands
};

}  // namespace aq
