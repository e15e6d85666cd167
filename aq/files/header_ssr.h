#pragma once

#include <memory>
#include <string>

#include "aq/core/collection.h"
#include "aq/core/time.h"

namespace aq {

/// The header of a spectrum record file.
class AQ_HeaderSSR {
 public:
  std::shared_ptr<Collection<std::string>> cCommentLines =
      std::make_shared<Collection<std::string>>();
  std::string sFileName;
  std::shared_ptr<AQ_Time> aqFileDateTime = std::make_shared<AQ_Time>();
};

}  // namespace aq
