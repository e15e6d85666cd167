#include <algorithm>
#include <bit>
#include <cmath>
#include <concepts>
#include <cstddef>
#include <limits>
#include <set>
#include <utility>
#include <vector>

#include "aq/check/checks.h"
#include "aq/check/header_check.h"
#include "aq/check/level_jumps.h"
#include "aq/check/line_shapes.h"
#include "aq/check/record_lines.h"
#include "aq/core/enumerations.h"
#include "aq/core/time.h"
#include "aq/files/recording_history.h"
#include "aq/files/recording_trace.h"
#include "aq/sdf/recording.h"
#include "aq/text/checked_keywords.h"
#include "aq/text/fields.h"
#include "aq/text/number_text.h"

namespace aq {
namespace {

constexpr std::string_view kStartTime = "StartTime";
constexpr std::size_t kBeforeLevels = 3;  // record number, time of day and relative time

void checkLevel(double level, const FindingPlace& place, const Reporter& report) {
  if (level == double{AQ_INVALID_LEVEL}) {
    report(Kind::LevelInvalid, place, "the level is 9999, which means not valid");
  } else if (level < kLowestLevel || level > kHighestLevel) {
    report(Kind::LevelRange, place, numberText(level) + " dB is outside -20 to 200 dB");
  }
}

/// `place` is where the level of band `low` is.
void checkLevels(const AQ_Spectrum& spectrum, std::int16_t low, FindingPlace place,
                 const Reporter& report) {
  const std::size_t first = place.field;
  for (const auto& [band, level] : spectrum) {
    place.field = first + static_cast<std::size_t>(band - low);
    place.band = band;
    checkLevel(level.toDouble(), place, report);
  }
}

/// The levels from `LowBand` up; 9999 for a band without a level. Fixed-column files can have such
/// bands between others.
std::vector<double> levelsOf(const AQ_Spectrum& spectrum) {
  const std::int32_t low = spectrum.LowBand();
  std::vector<double> levels;
  for (const auto& [band, level] : spectrum) {
    levels.resize(static_cast<std::size_t>(band - low), double{AQ_INVALID_LEVEL});
    levels.push_back(level.toDouble());
  }
  return levels;
}

void checkRange(const HeaderCheck& header, const RecordLines& records, const Reporter& report) {
  using keywords::kRecordNumbers;
  const auto [low, high] = header.integersOf(kRecordNumbers);
  if (low == records.low() && high == records.high()) return;
  report(Kind::RecordRange, {.line = header.lineOf(kRecordNumbers), .field = 2},
         "the header says records " + std::to_string(low) + " to " + std::to_string(high) +
             ", but the file has " + std::to_string(records.low()) + " to " +
             std::to_string(records.high()));
}

/// Reports at most one finding per file, since a wrong reference time makes every relative time
/// wrong.
template <class Records>
void checkRelativeTimes(const Records& records, AQ_SpectralTimeHistory& history,
                        const std::set<std::int32_t>& offInTime, const Reporter& report) {
  constexpr double kTolerance = 0.0201;  // s; times may be rounded to hundredths
  const double reference = history.ReferenceTime()->TODseconds();
  FindingPlace place;
  std::size_t wrong = 0;
  std::string first;
  records.forEach([&](std::int16_t record, std::size_t line) {
    if (offInTime.contains(record)) return;
    const AQ_Time time = history.spectrum(record)->timeValue();
    const double expected = std::remainder(time.TODseconds() - reference, kSecondsPerDay);
    if (std::abs(time.RelSeconds() - expected) <= kTolerance) return;
    if (++wrong != 1) return;
    place = {.line = line, .field = kBeforeLevels, .record = record};
    first = "expected " + secondsText(expected) + ", found " + secondsText(time.RelSeconds());
  });
  if (wrong == 0) return;
  report(Kind::RelativeTime, place,
         first + "; wrong in " + std::to_string(wrong) + (wrong == 1 ? " record" : " records"));
}

/// Seconds from the start of a half-second record to its time stamp, by stamp type.
double shiftOf(AQ_TimeStampType type) {
  switch (type) {
    case AQ_START: break;
    case AQ_MIDPT: return 0.25;
    case AQ_END: return 0.5;
    case AQ_ICAOSLO: return -0.25;
    case AQ_OLDSLO: return -0.5;
  }
  return 0;
}

/// The start time may be that of record 1 or that of the lowest record in the file.
void checkStartTime(const HeaderCheck& header, const RecordLines& records,
                    AQ_SpectralTimeHistory& history, const Reporter& report) {
  constexpr double kTolerance = 0.0201;  // s; both times may be rounded to hundredths
  const auto low = static_cast<std::int16_t>(records.low());
  const double stamp = history.spectrum(low)->timeValue().TODseconds();
  const double expected = history.startTime()->TODseconds() + shiftOf(history.TimeStampType());
  const auto fits = [&](double first) {
    return std::abs(std::remainder(stamp - first, kSecondsPerDay)) <= kTolerance;
  };
  if (fits(expected) || fits(expected + (low - 1) * 0.5)) return;
  report(Kind::StartTime, {.line = header.lineOf(kStartTime), .field = 2},
         "the start time implies a first stamp that differs by " +
             secondsText(std::remainder(expected - stamp, kSecondsPerDay)) +
             " from the actual one, " + history.spectrum(low)->timeValue().TODstring());
}

bool isAnyValid(const std::vector<double>& levels) {
  return std::any_of(levels.begin(), levels.end(),
                     [](double level) { return level != double{AQ_INVALID_LEVEL}; });
}

/// Reports each run of records that repeat all levels of the record before the run. Measured levels
/// hardly ever repeat exactly.
class StuckRecords {
 public:
  explicit StuckRecords(const Reporter& report) : report_(report) {}

  void see(std::int16_t record, std::size_t line, std::vector<double> levels) {
    const bool same = record == last_ + 1 && levels == levels_ && isAnyValid(levels);
    if (same && first_ == 0) first_ = line, before_ = last_;
    if (!same) finish();
    last_ = record;
    levels_ = std::move(levels);
  }

  void finish() {
    constexpr std::size_t kEnough = 8;  // levels; fewer may be equal by chance
    const auto count = static_cast<std::size_t>(last_ - before_);
    if (first_ != 0 && count * levels_.size() >= kEnough) {
      const std::string last = count == 1 ? "" : " to " + std::to_string(last_);
      FindingPlace place{.line = first_};
      place.record = before_ + 1;
      report_(Kind::RecordStuck, place,
              "records that repeat all levels of record " + std::to_string(before_) + ": " +
                  std::to_string(before_ + 1) + last);
    }
    first_ = 0;
  }

 private:
  const Reporter& report_;
  std::vector<double> levels_;
  std::int32_t last_ = std::numeric_limits<std::int16_t>::min() - 1;
  std::int32_t before_ = 0;  // the record whose levels are repeated
  std::size_t first_ = 0;    // the first line that repeats them; 0 outside a run
};

/// A hash of all levels (FNV-1a over their bits), which is practically never the same for different
/// levels.
class Digest {
 public:
  void see(const std::vector<double>& levels) {
    for (const double level : levels) {
      const auto bits = std::bit_cast<std::uint64_t>(level);
      for (int shift = 0; shift < 64; shift += 8) {
        value_ = (value_ ^ ((bits >> shift) & 0xFF)) * 0x100000001B3U;
      }
    }
    count_ += levels.size();
    valid_ = valid_ || isAnyValid(levels);
  }

  void report(const Reporter& to) const {
    constexpr std::size_t kEnough = 8;  // levels
    if (valid_ && count_ >= kEnough) to.levels(value_);
  }

 private:
  std::uint64_t value_ = 0xCBF29CE484222325U;
  std::size_t count_ = 0;
  bool valid_ = false;
};

/// The first level column is that of `low`. Returns the hash of the levels.
template <class Records>
Digest checkAllLevels(const Records& records, const AQ_SpectralTimeHistory& history,
                      std::int16_t low, const Reporter& report, double recordLength = 0.5) {
  constexpr std::size_t kFirst = kBeforeLevels + 1;
  constexpr double kLongest = 1;  // s; in longer records the sound may change as much as in a jump
  StuckRecords stuck(report);
  Digest digest;
  LevelJumps jumps(low, kFirst, report);
  records.forEach([&](std::int16_t record, std::size_t line) {
    const AQ_Spectrum& spectrum = *history.spectrum(record);
    checkLevels(spectrum, low, {.line = line, .field = kFirst, .record = record}, report);
    std::vector<double> levels = levelsOf(spectrum);
    digest.see(levels);
    stuck.see(record, line, levels);
    if (recordLength > kLongest) return;
    jumps.see(record, line, spectrum.LowBand(), std::move(levels));
  });
  stuck.finish();
  return digest;
}

/// The records of a fixed-column history, whose reader requires all of them, in order.
struct FixedRecords {
  std::int16_t first;
  std::int16_t last;
  std::size_t firstLine;

  template <class Visit>
  void forEach(const Visit& visit) const {
    for (std::int32_t record = first; record <= last; ++record) {
      visit(static_cast<std::int16_t>(record),
            firstLine + static_cast<std::size_t>(record - first));
    }
  }
};

}  // namespace

Content<AQ_HeaderSTH, AQ_SpectralTimeHistory> historyIn(const std::string& path) {
  const FileKind kind = kindOfFile(path);
  Content<AQ_HeaderSTH, AQ_SpectralTimeHistory> read;
  forFormats([&]<class File, class Header, class Model>(const Format<File, Header, Model>& format) {
    if constexpr (std::same_as<Model, AQ_SpectralTimeHistory>) {
      if (format.kind != kind) return;
      File file;
      if (readContent(file, path, read) != AQ_DATA_OK) read = {};
    }
  });
  return read;
}

void check(FileOf<AQ_DataSPC> of, const Reporter& report) {
  AQ_DataSPC file;
  std::size_t headings = 0;
  file.observeHeader([&](const HeaderLine& line) { headings = line.number; });
  Content<AQ_HeaderSTH, AQ_SpectralTimeHistory> read;
  if (readContent(file, of.path, read) != AQ_DATA_OK) {
    return report.unreadable(*file.lastFailure());
  }
  AQ_SpectralTimeHistory& history = *read.model;
  const FixedRecords records{file.NumberFirstRecord(), file.NumberLastRecord(), headings + 1};
  const auto offInTime = checkTimeSteps(
      records,
      [&](std::int16_t record) { return history.spectrum(record)->timeValue().TODseconds(); },
      report, file.RecordLength());
  checkRelativeTimes(records, history, offInTime, report);
  // No digest: a fixed-column file is usually a copy, with the same levels as its source.
  static_cast<void>(checkAllLevels(records, history, file.BandLow(), report, file.RecordLength()));
}

void check(FileOf<AQ_DataSTH> file, const Reporter& report) {
  HeaderCheck header(report);
  Content<AQ_HeaderSTH, AQ_SpectralTimeHistory> read;
  if (!header.reads<AQ_DataSTH>(file.path, read)) return;
  AQ_SpectralTimeHistory& history = *read.model;
  const auto [low, high] = header.integersOf(keywords::kBands);
  const std::size_t bands = low <= high ? static_cast<std::size_t>(high - low) + 1 : 0;
  const RecordLines records(file.path, header, {kBeforeLevels + bands, bands, true}, report);
  if (!records.readable()) return;
  header.expectLabels(kBeforeLevels + 1, low, high);
  header.expectWord(keywords::kAveragingMethod, history.sAveragingMethod());
  header.expectWord(keywords::kTimeStampType, history.sTimeStampType());
  header.expectReferenceType();
  header.expectCount(keywords::kNumberOfSpectrum, records.count(), "records");
  if (records.count() == 0) return;
  checkRange(header, records, report);
  const auto offInTime = checkTimeSteps(
      records,
      [&](std::int16_t record) { return history.spectrum(record)->timeValue().TODseconds(); },
      report);
  checkRelativeTimes(records, history, offInTime, report);
  const bool stamped =
      upperCased(header.valueOf(keywords::kTimeStampType)) == history.sTimeStampType();
  if (stamped) checkStartTime(header, records, history, report);
  checkAllLevels(records, history, low, report).report(report);
}

void check(FileOf<AQ_DataSSR> file, const Reporter& report) {
  HeaderCheck header(report);
  Content<AQ_HeaderSSR, AQ_Spectrum> read;
  if (!header.reads<AQ_DataSSR>(file.path, read)) return;
  const std::size_t levels = header.lines() + 1;
  const auto bands =
      static_cast<std::size_t>(std::max(0, read.model->HighBand() - read.model->LowBand() + 1));
  const LineShapes shapes(file.path, header.lines(), {bands, bands, true});
  shapes.report(file.path, report);
  if (shapes.decimalCommas()) return;
  header.expectLabels(1, read.model->LowBand(), read.model->HighBand());
  checkLevels(*read.model, read.model->LowBand(), {.line = levels, .field = 1}, report);
  checkNothingAfter(file.path, levels, report);
}

void check(FileOf<AQ_DataHP3565> file, const Reporter& report) {
  const auto recording = sdf::Recording::fromFile(file.path);
  for (std::string& mark : marksOf(traceOf(recording, 1))) {
    report(Kind::AnalyzerMark, {}, std::move(mark));
  }
  static_cast<void>(historyOf(recording, {}));  // throws if the levels cannot be computed
}

}  // namespace aq
