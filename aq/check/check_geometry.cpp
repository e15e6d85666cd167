#include <limits>

#include "aq/check/checks.h"
#include "aq/check/header_check.h"
#include "aq/check/record_lines.h"
#include "aq/geometry/data_gth.h"
#include "aq/geometry/data_mic.h"
#include "aq/geometry/data_pth.h"
#include "aq/geometry/data_tspi.h"
#include "aq/geometry/tracking_line.h"
#include "aq/text/count_keywords.h"
#include "aq/text/line_reader.h"

namespace aq {
namespace {

/// Watches the times of positions, one a line.
class TimeOrder {
 public:
  explicit TimeOrder(const Reporter& report) : report_(report) {}

  void see(AQ_Position& position, std::size_t line) {
    const AQ_Time& time = *position.Time();
    if (time.TODseconds() <= before_) {
      report_(Kind::TimeOrder, {.line = line, .field = 1},
              time.TODstring() + " is not later than the line before");
    }
    before_ = time.TODseconds();
  }

 private:
  const Reporter& report_;
  double before_ = -std::numeric_limits<double>::infinity();
};

}  // namespace

void checkPositions(const std::string& path, const Reporter& report) {
  AQ_DataPTH file;
  HeaderCheck header(report);
  std::shared_ptr<AQ_HeaderPTH> fields;
  std::shared_ptr<AQ_PositionTimeHistory> history;
  AQ_DataMessage result = AQ_DATA_FILE_ERROR;
  file.watchHeader(header.watch());
  file.readFile(path, fields, history, result);
  if (result != AQ_DATA_OK) return report.unreadable(*file.lastFailure());
  const std::int32_t count = history->Count();
  header.expectCount(keywords::kNumberRecords, static_cast<std::size_t>(count), "positions");
  TimeOrder order(report);
  for (std::int32_t place = 1; place <= count; ++place) {
    order.see(*history->Position(place), header.lines() + static_cast<std::size_t>(place));
  }
}

void checkTracking(const std::string& path, const Reporter& report) {
  AQ_DataTSPI file;
  std::shared_ptr<AQ_PositionTimeHistory> history;
  AQ_DataMessage result = AQ_DATA_FILE_ERROR;
  file.readFile(path, history, result);
  if (result != AQ_DATA_OK) return report.unreadable(*file.lastFailure());
  LineReader lines(path);
  TimeOrder order(report);
  while (lines.next()) {
    if (lines.number() <= kTrackingHeaderLines) continue;
    const TrackingLine fix = trackingLineFrom(lines);
    order.see(*fix.position, lines.number());
    if (fix.quality <= file.RT20Limit()) continue;
    report(Kind::FixRejected, {.line = lines.number(), .field = 2},
           "RT20 figure " + std::to_string(fix.quality) + " is above " +
               std::to_string(file.RT20Limit()));
  }
}

void checkMicrophone(const std::string& path, const Reporter& report) {
  AQ_DataMIC file;
  HeaderCheck header(report);
  std::shared_ptr<AQ_HeaderMIC> fields;
  AQ_DataMessage result = AQ_DATA_FILE_ERROR;
  file.watchHeader(header.watch());
  file.readFile(path, fields, std::make_shared<AQ_Microphone>(), result);
  if (result != AQ_DATA_OK) return report.unreadable(*file.lastFailure());
  checkNothingBehind(path, header.lines() + 1, report);
}

void checkGeometry(const std::string& path, const Reporter& report) {
  constexpr std::size_t kFields = 11;
  AQ_DataGTH file;
  HeaderCheck header(report);
  std::shared_ptr<AQ_HeaderGTH> fields;
  std::shared_ptr<AQ_GeometryTimeHistory> history;
  AQ_DataMessage result = AQ_DATA_FILE_ERROR;
  file.watchHeader(header.watch());
  file.readFile(path, fields, history, result);
  if (result != AQ_DATA_OK) return report.unreadable(*file.lastFailure());
  const RecordLines records(path, header, kFields, report);
  header.expectCount(keywords::kNumberRecords, records.count(), "points");
  if (records.count() == 0) return;
  checkTimeSteps(
      records, [&](std::int16_t record) { return history->Point(record)->Tm()->TODseconds(); },
      report);
}

}  // namespace aq
