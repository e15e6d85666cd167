#include <cmath>
#include <cstddef>

#include "aq/check/checks.h"
#include "aq/check/header_check.h"
#include "aq/check/record_lines.h"
#include "aq/core/enumerations.h"
#include "aq/core/time.h"
#include "aq/text/checked_keywords.h"
#include "aq/text/fields.h"
#include "aq/text/number_text.h"

namespace aq {
namespace {

constexpr double kLowest = -20;
constexpr double kHighest = 200;
constexpr std::size_t kBeforeLevels = 3;  // record number, time of day and relative time

/// `place` is that of the level in front of the first.
void checkLevels(const AQ_Spectrum& spectrum, FindingPlace place, const Reporter& report) {
  std::int16_t band = spectrum.LowBand();
  for (const double level : spectrum.plainLevels()) {
    ++place.field;
    place.band = band++;
    if (level == double{AQ_INVALID_LEVEL}) {
      report(Kind::LevelInvalid, place, "9999, no valid level");
    } else if (level < kLowest || level > kHighest) {
      report(Kind::LevelRange, place, numberText(level) + " dB is outside -20 to 200 dB");
    }
  }
}

void checkRange(const HeaderCheck& header, const RecordLines& records, const Reporter& report) {
  using keywords::kRecordNumbers;
  const auto [low, high] = header.integersOf(kRecordNumbers);
  if (low == records.low() && high == records.high()) return;
  report(Kind::RecordRange, {.line = header.lineOf(kRecordNumbers), .field = 2},
         "the header says records " + std::to_string(low) + " to " + std::to_string(high) +
             ", the file has " + std::to_string(records.low()) + " to " +
             std::to_string(records.high()));
}

/// One finding a file: a wrong reference time makes every relative time wrong.
void checkRelativeTimes(const RecordLines& records, AQ_SpectralTimeHistory& history,
                        const Reporter& report) {
  constexpr double kTolerance = 0.0201;  // hundredths of the time of day, and single precision
  const double reference = history.ReferenceTime()->TODseconds();
  FindingPlace place;
  std::size_t wrong = 0;
  std::string first;
  records.forEach([&](std::int16_t record, std::size_t line) {
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

}  // namespace

void check(FileOf<AQ_DataSTH> file, const Reporter& report) {
  HeaderCheck header(report);
  Content<AQ_HeaderSTH, AQ_SpectralTimeHistory> read;
  if (!header.reads<AQ_DataSTH>(file.path, read)) return;
  AQ_SpectralTimeHistory& history = *read.model;
  const auto [low, high] = header.integersOf(keywords::kBands);
  header.expectLabels(kBeforeLevels + 1, low, high);
  const std::size_t bands = low <= high ? static_cast<std::size_t>(high - low) + 1 : 0;
  const RecordLines records(file.path, header, kBeforeLevels + bands, report);
  header.expectWord(keywords::kAveragingMethod, history.sAveragingMethod());
  header.expectWord(keywords::kTimeStampType, history.sTimeStampType());
  header.expectCount(keywords::kNumberOfSpectrum, records.count(), "records");
  if (records.count() == 0) return;
  checkRange(header, records, report);
  checkTimeSteps(
      records,
      [&](std::int16_t record) { return history.spectrum(record)->timeValue().TODseconds(); },
      report);
  checkRelativeTimes(records, history, report);
  records.forEach([&](std::int16_t record, std::size_t line) {
    checkLevels(*history.spectrum(record), {.line = line, .field = kBeforeLevels, .record = record},
                report);
  });
}

void check(FileOf<AQ_DataSSR> file, const Reporter& report) {
  HeaderCheck header(report);
  Content<AQ_HeaderSSR, AQ_Spectrum> read;
  if (!header.reads<AQ_DataSSR>(file.path, read)) return;
  header.expectLabels(1, read.model->LowBand(), read.model->HighBand());
  const std::size_t levels = header.lines() + 1;
  checkLevels(*read.model, {.line = levels}, report);
  checkNothingBehind(file.path, levels, report);
}

}  // namespace aq
