#include <cmath>
#include <limits>

#include "aq/check/checks.h"
#include "aq/check/header_check.h"
#include "aq/check/record_lines.h"
#include "aq/geometry/tracking_line.h"
#include "aq/text/checked_keywords.h"
#include "aq/text/line_reader.h"

namespace aq {
namespace {

/// Watches the times of positions, one a line.
class TimeOrder {
 public:
  explicit TimeOrder(const Reporter& report) : report_(report) {}

  void see(AQ_Position& position, std::size_t line) {
    const AQ_Time& time = *position.Time();
    if (std::remainder(time.TODseconds() - before_, kSecondsPerDay) <= 0) {
      report_(Kind::TimeOrder, {.line = line, .field = 1},
              time.TODstring() + " is not later than the line before");
    }
    before_ = time.TODseconds();
  }

 private:
  const Reporter& report_;
  double before_ = std::numeric_limits<double>::quiet_NaN();  // nothing is later or not than it
};

/// Calls `visit(fix, line)` for every fix of a file that reads.
template <class Visit>
void forFixes(const std::string& path, const Visit& visit) {
  LineReader lines(path);
  while (lines.next()) {
    if (lines.number() > kTrackingHeaderLines) visit(trackingLineFrom(lines), lines.number());
  }
}

void checkQuality(const TrackingLine& fix, std::uint8_t limit, std::size_t line,
                  const Reporter& report) {
  if (fix.quality <= limit) return;
  report(Kind::FixRejected, {.line = line, .field = 2},
         "RT20 figure " + std::to_string(fix.quality) + " is above " + std::to_string(limit));
}

}  // namespace

void check(FileOf<AQ_DataPTH> file, const Reporter& report) {
  HeaderCheck header(report);
  Content<AQ_HeaderPTH, AQ_PositionTimeHistory> read;
  if (!header.reads<AQ_DataPTH>(file.path, read)) return;
  const std::int32_t count = read.model->Count();
  header.expectCount(keywords::kNumberRecords, static_cast<std::size_t>(count), "positions");
  TimeOrder order(report);
  for (std::int32_t place = 1; place <= count; ++place) {
    order.see(*read.model->Position(place), header.lines() + static_cast<std::size_t>(place));
  }
}

void check(FileOf<AQ_DataTSPI> of, const Reporter& report) {
  AQ_DataTSPI file;
  Content<void, AQ_PositionTimeHistory> read;
  if (readContent(file, of.path, read) != AQ_DATA_OK) return report.unreadable(*file.lastFailure());
  TimeOrder order(report);
  forFixes(of.path, [&](const TrackingLine& fix, std::size_t line) {
    order.see(*fix.position, line);
    checkQuality(fix, file.RT20Limit(), line, report);
  });
}

void check(FileOf<AQ_DataMIC> file, const Reporter& report) {
  HeaderCheck header(report);
  Content<AQ_HeaderMIC, AQ_Microphone> read;
  if (!header.reads<AQ_DataMIC>(file.path, read)) return;
  checkNothingBehind(file.path, header.lines() + 1, report);
}

void check(FileOf<AQ_DataGTH> file, const Reporter& report) {
  constexpr std::size_t kFields = 11;
  HeaderCheck header(report);
  Content<AQ_HeaderGTH, AQ_GeometryTimeHistory> read;
  if (!header.reads<AQ_DataGTH>(file.path, read)) return;
  const RecordLines records(file.path, header, kFields, report);
  header.expectCount(keywords::kNumberRecords, records.count(), "points");
  checkTimeSteps(
      records, [&](std::int16_t record) { return read.model->Point(record)->Tm()->TODseconds(); },
      report);
}

void checkQuality(FileOf<AQ_DataTSPI> file, std::uint8_t limit, const Reporter& report) {
  forFixes(file.path, [&](const TrackingLine& fix, std::size_t line) {
    checkQuality(fix, limit, line, report);
  });
}

}  // namespace aq
