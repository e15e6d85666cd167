#include "aq/geometry/data_tspi.h"

#include "aq/geometry/tracking_line.h"
#include "aq/text/data_line_limit.h"

namespace aq {

void AQ_DataTSPI::readFile(const std::string& sFileName,
                           std::shared_ptr<AQ_PositionTimeHistory>& PTH, AQ_DataMessage& result) {
  result = reading(sFileName, [&](const std::string& name) {
    LineReader lines(name);
    bool more = lines.next();
    badPositions_ = 0;
    auto history = std::make_shared<AQ_PositionTimeHistory>();
    std::int32_t accepted = 0;
    DataLineLimit limit;  // counts the header's lines too
    for (; more; more = lines.next()) {
      if (limit.count(lines) <= static_cast<std::int32_t>(kTrackingHeaderLines)) {
        showLine(headerObserver(), {lines.number(), HeaderLine::Use::Unused, {}, lines.line(), {}});
        continue;
      }
      TrackingLine line = trackingLineFrom(lines);
      if (line.quality > limit_) {
        ++badPositions_;
      } else {
        history->Position(++accepted, std::move(line.position));
      }
    }
    PTH = std::move(history);
  });
}

}  // namespace aq
