#include "aq/files/recording_history.h"

#include <algorithm>
#include <chrono>
#include <cmath>
#include <limits>
#include <vector>

#include "aq/detail/shared_blocks.h"
#include "aq/files/band_plan.h"
#include "aq/files/recording_trace.h"
#include "aq/text/date_text.h"
#include "aq/text/fields.h"
#include "aq/text/number_text.h"

namespace aq {
namespace {

using sdf::kData;
using sdf::kFile;
using sdf::kMeasurement;
using sdf::Record;
using sdf::Recording;

constexpr int kLongs = 3;  // the first revision with 32-bit indices

/// The minute in which a recording was started.
AQ_Time startOf(const Record& file) {
  constexpr std::int32_t kHundred = 100;
  constexpr std::int32_t kHoursOfDay = 24;
  constexpr std::int32_t kMinutes = 60;
  const std::int32_t year = file.integer(kFile["yearStamp"]);
  const std::int32_t date = file.integer(kFile["monthDayStamp"]);
  const std::int32_t clock = file.integer(kFile["hourMinStamp"]);
  const auto month = static_cast<unsigned>(date / kHundred);
  const auto day = static_cast<unsigned>(date % kHundred);
  const std::chrono::year_month_day calendar{std::chrono::year(year), std::chrono::month(month),
                                             std::chrono::day(day)};
  if (date < 0 || year < 1 || year > 9999 || !calendar.ok()) {
    file.fail("a date", "year " + std::to_string(year) + ", month and day " + std::to_string(date));
  }
  if (clock < 0 || clock / kHundred >= kHoursOfDay || clock % kHundred >= kMinutes) {
    file.fail("a time of day as hours and minutes", std::to_string(clock));
  }
  AQ_Time start;
  start.CurrentDate(dateFrom(year, month, day));
  const auto minutes = clock / kHundred * kMinutes + clock % kHundred;
  start.assignSeconds(minutes * kMinutes, 0);
  return start;
}

/// The time `seconds` after `start`.
AQ_Time later(const AQ_Time& start, double seconds) {
  const double whole = start.TODseconds() + seconds;
  const double days = std::floor(whole / kSecondsPerDay);
  AQ_Time time;
  time.CurrentDate(start.CurrentDate() + days);
  time.assignSeconds(whole - days * kSecondsPerDay, seconds);
  return time;
}

AQ_AverageMethod averageOf(const Recording& recording) {
  constexpr std::int32_t kRms = 1;
  constexpr std::int32_t kExponential = 2;
  const std::int32_t type = recording.records().measurement().integer(kMeasurement["averageType"]);
  if (type == 0 || type == kRms) return AQ_LINEAR;
  return type == kExponential ? AQ_CONTEXPO : AQ_NA;
}

/// Computes the levels of one scan after another.
class LevelReader {
  static constexpr double kNoLevel = std::numeric_limits<double>::quiet_NaN();

 public:
  LevelReader(const Recording& recording, const RecordingTrace& trace, double calibration)
      : recording_(recording), trace_(trace) {
    // Narrow-band values are peaks and octave values are rms values; power data holds their
    // squares.
    constexpr double kHalf = 0.5;
    constexpr double kReference = 20e-6;  // Pa
    power_ = trace.set->header.integer(kData["yIsPowerData"]) != 0;
    const double reference = trace.pressure ? kReference : 1;
    constant_ = (power_ ? 10 : 20) * std::log10(std::abs(trace.gain)) - 20 * std::log10(reference) +
                (trace.narrow ? 10 * std::log10(kHalf) : 0) + calibration;
    negative_ = power_ && trace.gain < 0;
    factor_ = power_ || trace.narrow ? 10 : 20;
  }

  void read(std::size_t scan, AQ_Spectrum& spectrum) {
    const sdf::Numbers y = recording_.y(*trace_.set, trace_.trace, scan);
    plan(scan, y.count);
    values_.resize(y.count);
    y.copyTo(values_);
    if (trace_.scale != 1 || trace_.offset != 0) {
      for (double& value : values_) value = trace_.offset + trace_.scale * value;
    }
    if (trace_.narrow && !power_) {
      for (double& value : values_) value *= value;
    }
    levels_.resize(plan_.size());
    bool whole = whole_;
    for (std::size_t i = 0; i < plan_.size(); ++i) {
      levels_[i] = valueOf(i, scan);
      whole = whole && levels_[i] > 0;
    }
    for (double& level : levels_) {
      level = level > 0 ? factor_ * std::log10(level) + constant_ : kNoLevel;
    }
    // The values are finite, and so are their logarithms: only the constant can make a level
    // infinite.
    if (!std::isfinite(constant_)) failAt(0, scan, constant_);
    if (whole) return spectrum.assignLevels(plan_.band(0), levels_);
    for (std::size_t i = 0; i < plan_.size(); ++i) {
      if (!std::isnan(levels_[i])) spectrum.SPL(plan_.band(i), levels_[i]);
    }
  }

 private:
  void plan(std::size_t scan, std::size_t count) {
    const bool same = planned_ && count == values_.size() && trace_.set->axis != sdf::Axis::OfTrace;
    if (same) return;
    const std::size_t points = validPoints(recording_, *trace_.set, count);
    const std::vector<double> x = recording_.x(*trace_.set, trace_.trace, scan, points);
    plan_ = trace_.narrow ? ofBins(x, count) : BandPlan::ofOctaves(x);
    whole_ = plan_.isWhole();
    planned_ = true;
  }

  [[nodiscard]] BandPlan ofBins(std::span<const double> x, std::size_t count) const {
    const sdf::RecordList& records = recording_.records();
    const Record& measurement = records.measurement();
    const std::int32_t start = records.integer(measurement, kMeasurement["startFreqIndex"], kLongs,
                                               kMeasurement["startFreqIndexOld"]);
    const std::int32_t stop = records.integer(measurement, kMeasurement["stopFreqIndex"], kLongs,
                                              kMeasurement["stopFreqIndexOld"]);
    if (start < 0 || stop < start || std::cmp_greater_equal(stop, count)) {
      measurement.fail("first and last alias-free point from 0 to " + std::to_string(count - 1),
                       std::to_string(start) + " and " + std::to_string(stop));
    }
    return BandPlan::ofBins(x, static_cast<std::size_t>(start),
                            std::min(static_cast<std::size_t>(stop) + 1, x.size()));
  }

  /// The value whose logarithm gives the level of a band; a band whose value is 0 or less has no
  /// level.
  [[nodiscard]] double valueOf(std::size_t place, std::size_t scan) const {
    const double value = plan_.value(place, values_);
    if (!std::isfinite(value)) failAt(place, scan, value);
    if (!power_ && !trace_.narrow) return std::abs(value);
    return negative_ ? -value : value;
  }

  [[noreturn]] void failAt(std::size_t place, std::size_t scan, double value) const {
    trace_.set->header.fail("a finite value in band " + std::to_string(plan_.band(place)) +
                                " of scan " + std::to_string(scan),
                            exactText(value));
  }

  const Recording& recording_;
  const RecordingTrace& trace_;
  bool power_;
  bool negative_;
  double factor_;
  double constant_;
  BandPlan plan_;
  bool planned_ = false;
  bool whole_ = false;
  std::vector<double> values_;
  std::vector<double> levels_;
};

/// Seconds from the start of the recording to each scan.
class ScanTimes {
 public:
  ScanTimes(const Recording& recording, const RecordingTrace& trace, double length)
      : recording_(recording), trace_(trace), length_(length) {
    if (!trace.set->scanned) return;
    variable_ = recording.scanVariable(*trace.set);
    if (variable_ && !variable_->isTime) variable_.reset();
  }

  [[nodiscard]] double at(std::size_t scan) const {
    const auto value = variable_ ? recording_.scanValue(*variable_, *trace_.set, trace_.trace, scan)
                                 : std::nullopt;
    if (!value) return trace_.set->scanned ? static_cast<double>(scan) * length_ : 0;
    const double factor = variable_->unit.factor;
    const double seconds = factor == 0 ? *value : *value * factor;
    if (!(std::abs(seconds) <= kMostSeconds)) {
      variable_->record->fail("a plausible time for scan " + std::to_string(scan),
                              exactText(seconds));
    }
    return seconds;
  }

 private:
  static constexpr double kMostSeconds = 1e11;  // 3,000 years

  const Recording& recording_;
  const RecordingTrace& trace_;
  double length_;
  std::optional<sdf::ScanVariable> variable_;
};

std::size_t recordsOf(const Recording& recording, const RecordingTrace& trace) {
  const std::size_t count = trace.set->scanned ? recording.scans().valid : 1;
  constexpr std::size_t kMost = std::numeric_limits<std::int16_t>::max();
  if (count == 0 || count > kMost) {
    failRead(0, 0, "1 to 32767 scans", std::to_string(count));
  }
  return count;
}

}  // namespace

std::shared_ptr<AQ_HeaderSTH> headerOf(const Recording& recording, const std::string& file,
                                       const RecordingSettings& settings) {
  const Record& fileHeader = recording.records().file();
  const RecordingTrace trace = traceOf(recording, settings.channel);
  const auto textOf = [](const Record& record, const sdf::Field& field) {
    return std::string(trimmed(record.text(field)));
  };
  auto header = std::make_shared<AQ_HeaderSTH>();
  header->sProjectName = textOf(recording.records().measurement(), kMeasurement["measTitle"]);
  if (trace.channel != nullptr) {
    header->sMicrophoneID = textOf(*trace.channel, sdf::kChannel["channelLabel"]);
  }
  const std::int32_t instrument = fileHeader.integer(kFile["applic"]);
  header->sGeneratedBy = sdf::wordOf(*kFile["applic"].codes, instrument);
  if (header->sGeneratedBy.empty()) header->sGeneratedBy = std::to_string(instrument);
  header->sGenerationFile = file;
  *header->aqGenerationDateTime = startOf(fileHeader);
  for (std::string& note : notesOf(trace, settings.calibration)) {
    header->cCommentLines->Add(std::move(note));
  }
  return header;
}

std::shared_ptr<AQ_SpectralTimeHistory> historyOf(const Recording& recording,
                                                  const RecordingSettings& settings) {
  const RecordingTrace trace = traceOf(recording, settings.channel);
  const AQ_Time start = startOf(recording.records().file());
  const std::size_t count = recordsOf(recording, trace);
  auto history = std::make_shared<AQ_SpectralTimeHistory>();
  *history->startTime() = start;
  *history->ReferenceTime() = start;
  history->AverageMethod(averageOf(recording));
  history->TimeStampType(AQ_START);
  history->ReferenceType(AQ_START_REF);
  LevelReader levels(recording, trace, settings.calibration);
  const ScanTimes times(recording, trace, settings.recordLength);
  SharedBlocks<AQ_Spectrum> spectra;
  SharedBlocks<AQ_Time> stamps;
  for (std::size_t scan = 0; scan < count; ++scan) {
    auto spectrum = spectra.next();
    levels.read(scan, *spectrum);
    auto stamp = stamps.next();
    *stamp = later(start, times.at(scan));
    spectrum->Time(std::move(stamp));
    history->spectrum(static_cast<std::int16_t>(scan + 1), std::move(spectrum));
  }
  return history;
}

}  // namespace aq
