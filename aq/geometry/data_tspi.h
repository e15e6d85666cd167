#pragma once

#include <cstdint>
#include <memory>
#include <string>

#include "aq/core/enumerations.h"
#include "aq/core/export.h"
#include "aq/geometry/position_time_history.h"
#include "aq/text/file_class.h"

namespace aq {

/// Reads tracking files, which hold time-space-position information about the aircraft
/// (docs/formats/tracking.md). Drops and counts positions of poor quality.
class AQ_API AQ_DataTSPI : public FileClass {
 public:
  /// Reads a file into a new history, numbered from 1 without gaps. If reading fails, `PTH` is
  /// unchanged.
  void readFile(const std::string& sFileName, std::shared_ptr<AQ_PositionTimeHistory>& PTH,
                AQ_DataMessage& result);

  /// The highest RT20 quality figure that is accepted, 0 to 255, initially 1; 0 is the best.
  [[nodiscard]] std::uint8_t RT20Limit() const { return limit_; }
  void RT20Limit(std::uint8_t limit) { limit_ = limit; }

  /// How many positions the last read dropped, up to its failure if it failed; unchanged by a read
  /// that could not open its file.
  [[nodiscard]] std::int32_t nBadPositions() const { return badPositions_; }

 private:
  std::uint8_t limit_ = 1;
  std::int32_t badPositions_ = 0;
};

}  // namespace aq
