#include <algorithm>
#include <array>
#include <cmath>
#include <limits>
#include <set>
#include <vector>

#include "aq/check/checks.h"
#include "aq/check/header_check.h"
#include "aq/check/line_shapes.h"
#include "aq/check/path_check.h"
#include "aq/check/record_lines.h"
#include "aq/geometry/tracking_line.h"
#include "aq/text/checked_keywords.h"
#include "aq/text/fields.h"
#include "aq/text/line_reader.h"

namespace aq {
namespace {

/// Checks that the times of positions, one per line, ascend. Also looks for repeated positions,
/// jumps and gaps.
class TimeOrder {
 public:
  explicit TimeOrder(const Reporter& report) : report_(report) {}

  void see(AQ_Position& position, std::size_t line) {
    const AQ_Time& time = *position.Time();
    const bool falls = std::remainder(time.TODseconds() - before_, kSecondsPerDay) <= 0;
    if (falls) {
      report_(Kind::TimeOrder, {.line = line, .field = 1},
              time.TODstring() + " is not later than the previous line's time");
    }
    before_ = time.TODseconds();
    const std::array<double, 3> at{position.X(), position.Y(), position.Z()};
    at == at_ ? ++stays_ : (reportStay(), stays_ = 0);
    at_ = at;
    line_ = line;
    if (!falls) path_.push_back({before_, at, line});
  }

  void finish() const {
    reportStay();
    checkJumps(path_, report_);
    checkGaps(path_, report_);
  }

 private:
  /// Reports a stuck tracker or a source at rest: one finding per run of equal positions.
  void reportStay() const {
    constexpr std::size_t kEnough = 4;  // a slow source may well repeat its position a few times
    if (stays_ < kEnough) return;
    report_(Kind::PositionStuck, {.line = line_ - stays_},
            "the position stays the same in the next " + std::to_string(stays_) + " lines");
  }

  static constexpr double kNoPlace = std::numeric_limits<double>::quiet_NaN();

  const Reporter& report_;
  std::vector<PathPlace> path_;
  std::array<double, 3> at_{kNoPlace, kNoPlace, kNoPlace};  // equal to no position
  std::size_t stays_ = 0;  // lines that repeat the previous position
  std::size_t line_ = 0;
  double before_ = std::numeric_limits<double>::quiet_NaN();  // accepts any first time
};

/// Calls `visit(fix, line)` for every fix of a readable file.
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

constexpr std::size_t kPositionFields = 4;

/// Checks that the slant range, propagation time, times and source position of each point agree,
/// that the points give a plausible speed of sound, and that this speed agrees with the temperature
/// in the header. Reports at most one finding per point.
class Contradictions {
 public:
  Contradictions(const AQ_HeaderGTH& header, std::size_t temperatureLine, const Reporter& report)
      : microphone_(*header.MicrophonePosition),
        temperature_(double{header.Temperature}),
        temperatureLine_(temperatureLine),
        report_(report) {}

  /// Checks all points except those of the records in `wrong`, whose times are already known to be
  /// wrong.
  void check(const RecordLines& records, const AQ_GeometryTimeHistory& history,
             const std::set<std::int32_t>& wrong) {
    std::vector<double> speeds;
    records.forEach([&](std::int16_t record, std::size_t) {
      const AQ_Geometry& point = *history.Point(record);
      if (point.Tprope > 0) speeds.push_back(point.SRe / point.Tprope);
    });
    if (!speeds.empty()) {
      const auto middle = speeds.begin() + static_cast<std::ptrdiff_t>(speeds.size() / 2);
      std::nth_element(speeds.begin(), middle, speeds.end());
      speed_ = *middle;
      expectSound();
    }
    records.forEach([&](std::int16_t record, std::size_t line) {
      if (wrong.contains(record)) return;
      const std::string fault = faultOf(*history.Point(record), speeds.size());
      if (fault.empty()) return;
      report_(Kind::Contradiction, {.line = line, .record = record}, fault);
    });
  }

 private:
  /// Reports a speed that cannot be that of sound, in metres or feet per second; otherwise checks
  /// the temperature.
  void expectSound() const {
    const bool metres = speed_ > 290 && speed_ < 370;
    const bool feet = speed_ > 950 && speed_ < 1220;
    if (metres || feet) return expectTemperature(feet ? speed_ * 0.3048 : speed_);
    report_(Kind::Contradiction, {},
            "slant ranges and propagation times give a speed of " + numberText(rounded(speed_)) +
                " per second; the speed of sound is about 340 m or 1120 ft");
  }

  /// Reports an air temperature that is far from the one that gives this speed of sound in m/s,
  /// whether read as degrees Celsius or Fahrenheit. The margin is wide, since the temperature may
  /// vary along the path.
  void expectTemperature(double speed) const {
    constexpr double kNear = 20;       // degrees Celsius
    constexpr double kAtZero = 331.3;  // m/s, at 0 degrees Celsius
    constexpr double kZero = 273.15;   // K
    const double celsius = (std::pow(speed / kAtZero, 2) - 1) * kZero;
    if (std::abs(temperature_ - celsius) <= kNear) return;
    if (std::abs((temperature_ - 32) / 1.8 - celsius) <= kNear) return;
    report_(Kind::Contradiction, {.line = temperatureLine_, .field = 2},
            "slant ranges and propagation times give about " + numberText(std::round(celsius)) +
                " degrees Celsius, but the header says " + numberText(rounded(temperature_)));
  }

  [[nodiscard]] std::string faultOf(AQ_Geometry& point, std::size_t points) const {
    constexpr double kTolerance = 0.0201;  // s; both times may be rounded to hundredths
    constexpr std::size_t kEnough = 3;     // fewer points do not show which one is wrong
    const double between =
        std::remainder(point.Tm()->TODseconds() - point.Te()->TODseconds(), kSecondsPerDay);
    if (std::abs(between - point.Tprope) > kTolerance) {
      return "the sound is emitted " + secondsText(between) + " before it is measured, but " +
             "its propagation time is " + secondsText(point.Tprope);
    }
    const double range = point.Tprope * speed_;
    if (points >= kEnough && std::abs(point.SRe - range) > 0.005 * range + 0.1) {
      return "the slant range is " + numberText(point.SRe) + ", but the propagation time gives " +
             numberText(rounded(range));
    }
    const double distance =
        std::hypot(point.Pe()->X() - microphone_.X(), point.Pe()->Y() - microphone_.Y(),
                   point.Pe()->Z() - microphone_.Z());
    if (std::abs(point.SRe - distance) <= 0.01 * distance + 2) return {};
    return "the slant range is " + numberText(point.SRe) + ", but the position is " +
           numberText(rounded(distance)) + " from the microphone";
  }

  static double rounded(double value) { return std::round(value * 100) / 100; }

  const AQ_Position& microphone_;
  double temperature_;
  std::size_t temperatureLine_;
  const Reporter& report_;
  // The speed of sound, in the file's length unit per second: the median over the points with a
  // propagation time.
  double speed_ = 0;
};

std::vector<PathPlace> emissionPath(const RecordLines& records,
                                    const AQ_GeometryTimeHistory& history) {
  std::vector<PathPlace> path;
  records.forEach([&](std::int16_t record, std::size_t line) {
    const auto point = history.Point(record);
    const AQ_Position& at = *point->Pe();
    path.push_back({point->Te()->TODseconds(), {at.X(), at.Y(), at.Z()}, line, record});
  });
  return path;
}

/// Reports the last header line if it is a fix: the headings are missing, and this fix is not read.
void checkTrackingHeadings(const std::string& path, const Reporter& report) {
  LineReader lines(path);
  while (lines.number() < kTrackingHeaderLines && lines.next()) continue;
  try {
    static_cast<void>(trackingLineFrom(lines));
  } catch (const ReadFailure&) {
    return;
  }
  report(Kind::Heading, {.line = lines.number()},
         "the headings are missing; this line is read as headings, and its fix is lost");
}

}  // namespace

Content<AQ_HeaderPTH, AQ_PositionTimeHistory> check(FileOf<AQ_DataPTH> file,
                                                    const Reporter& report) {
  HeaderCheck header(report);
  Content<AQ_HeaderPTH, AQ_PositionTimeHistory> read;
  if (!header.reads<AQ_DataPTH>(file.path, read)) return {};
  const std::int32_t count = read.model->Count();
  header.expectCount(keywords::kNumberRecords, static_cast<std::size_t>(count), "positions");
  const LineShapes shapes(file.path, header.lines(), {kPositionFields, 3});
  header.expectHeadings(keywords::kPositionHeadings);
  shapes.report(file.path, report);
  if (shapes.decimalCommas()) return {};
  TimeOrder order(report);
  for (std::int32_t place = 1; place <= count; ++place) {
    order.see(*read.model->Position(place), header.lines() + static_cast<std::size_t>(place));
  }
  order.finish();
  return read;
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
  order.finish();
  checkTrackingHeadings(of.path, report);
  // Trackers may add fields of their own after the coordinates.
  const LineShapes shapes(of.path, kTrackingHeaderLines,
                          {std::numeric_limits<std::size_t>::max() / 2, 0});
  shapes.report(of.path, report);
}

Content<AQ_HeaderGTH, AQ_GeometryTimeHistory> check(FileOf<AQ_DataGTH> file,
                                                    const Reporter& report) {
  constexpr std::size_t kFields = 11;
  HeaderCheck header(report);
  Content<AQ_HeaderGTH, AQ_GeometryTimeHistory> read;
  if (!header.reads<AQ_DataGTH>(file.path, read)) return {};
  header.expectHeadings(keywords::kGeometryHeadings);
  const RecordLines records(file.path, header, {kFields, kFields - 1}, report);
  if (!records.readable()) return {};
  header.expectCount(keywords::kNumberRecords, records.count(), "points");
  if (records.count() == 0) return read;
  const auto wrong = checkTimeSteps(
      records, [&](std::int16_t record) { return read.model->Point(record)->Tm()->TODseconds(); },
      report);
  Contradictions(*read.header, header.lineOf(keywords::kTemperature), report)
      .check(records, *read.model, wrong);
  checkJumps(emissionPath(records, *read.model), report);
  return read;
}

void checkQuality(FileOf<AQ_DataTSPI> file, std::uint8_t limit, const Reporter& report) {
  forFixes(file.path, [&](const TrackingLine& fix, std::size_t line) {
    checkQuality(fix, limit, line, report);
  });
}

}  // namespace aq
