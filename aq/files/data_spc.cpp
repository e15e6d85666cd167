#include "aq/files/data_spc.h"

#include <algorithm>
#include <limits>
#include <optional>
#include <vector>

#include "aq/core/band_label.h"
#include "aq/core/words.h"
#include "aq/detail/pointers.h"
#include "aq/detail/shared_blocks.h"
#include "aq/text/checked_keywords.h"
#include "aq/text/date_text.h"
#include "aq/text/fixed_fields.h"
#include "aq/text/fixed_header.h"
#include "aq/text/header_writer.h"
#include "aq/text/level_code.h"
#include "aq/text/number_text.h"
#include "aq/text/plain_number.h"

namespace aq {
namespace {

constexpr std::int16_t kLowestBand = 2;
constexpr std::int16_t kHighestBand = 50;

constexpr Columns kRecord{1, 6};
constexpr Columns kTimeOfDay{7, 20};
constexpr Columns kRelative{21, 32};
constexpr int kRelativeDecimals = 3;

constexpr Columns levelColumns(std::size_t place) {
  const std::size_t first = kRelative.last + 1 + place * kLevelColumns;
  return {first, first + kLevelColumns - 1};
}

/// The nominal frequency in the label of a band, such as "50Hz" in "B17/50Hz".
std::string_view frequencyOf(std::int16_t band) {
  const std::string_view label = bandLabel(band);
  return label.substr(label.find('/') + 1);
}

void appendHeadings(std::string& text, std::int16_t low, std::int16_t high) {
  const std::size_t begin = text.size();
  appendRight(text, "Record", kRecord.width());
  appendRight(text, "TOD", kTimeOfDay.width());
  appendRight(text, "RelTime", kRelative.width());
  for (std::int32_t band = low; band <= high; ++band) {
    appendRight(text, frequencyOf(static_cast<std::int16_t>(band)), kLevelColumns);
  }
  endLine(text, begin);
}

// Writing records.

/// Appends the levels of the bands from `low` to `high`.
void appendLevels(std::string& text, const AQ_Spectrum& spectrum, std::int16_t low,
                  std::int16_t high) {
  const std::size_t begin = text.size();
  text.resize(begin + kLevelColumns * (static_cast<std::size_t>(high - low) + 1));
  char* at = text.data() + begin;
  const auto codes = spectrum.levelCodes();
  for (std::int32_t band = low; band <= high; ++band, at += kLevelColumns) {
    const std::int32_t place = band - spectrum.LowBand();
    if (place >= 0 && static_cast<std::size_t>(place) < codes.size()) {
      putInColumns(at, codes[static_cast<std::size_t>(place)]);
    } else if (spectrum.contains(band)) {
      const double level = spectrum.SPL(static_cast<std::int16_t>(band)).toDouble();
      putScaled(at, scaled(level, 2, kLevelColumns, "a level"), 2, kLevelColumns);
    } else {
      std::fill(at, at + kLevelColumns, ' ');
    }
  }
}

void appendRecord(std::string& text, std::int32_t record, const AQ_Spectrum& spectrum,
                  std::int16_t low, std::int16_t high) {
  const std::size_t begin = text.size();
  const AQ_Time time = spectrum.timeValue();
  text.append(kRecord.width(), ' ');
  putScaled(text.data() + begin, record, 0, kRecord.width());
  text.append(2, ' ');  // before the twelve characters of the time
  appendMilliseconds(text, time.TODseconds());
  const std::size_t relative = text.size();
  text.append(kRelative.width(), ' ');
  putScaled(text.data() + relative,
            scaled(time.RelSeconds(), kRelativeDecimals, kRelative.width(), "a relative time"),
            kRelativeDecimals, kRelative.width());
  appendLevels(text, spectrum, low, high);
  endLine(text, begin);
}

// Reading records.

std::int32_t recordFrom(std::string_view text) {
  const PlainInteger plain = plainInteger(text);
  return plain.length == text.size() && plain.length != 0 ? plain.value : int32From(text);
}

/// Reads the levels of one record after another. A band without a level becomes a gap if it lies
/// between bands with levels, and is left out at either end.
class LevelRow {
 public:
  LevelRow(std::int16_t low, std::int16_t high)
      : low_(low), count_(static_cast<std::size_t>(high - low) + 1) {}

  [[nodiscard]] std::size_t lastColumn() const { return levelColumns(count_).first - 1; }

  void read(FixedFieldReader& fields, AQ_Spectrum& spectrum) {
    codes_.resize(count_);
    const std::size_t plain = codesInColumns(fields.from(levelColumns(0).first), codes_);
    fields.pass(plain);
    if (plain == count_) return spectrum.assignCodes(low_, codes_);
    readEach(plain, fields, spectrum);
  }

 private:
  void readEach(std::size_t plain, FixedFieldReader& fields, AQ_Spectrum& spectrum) {
    levels_.assign(count_, std::nullopt);
    std::transform(codes_.begin(), codes_.begin() + static_cast<std::ptrdiff_t>(plain),
                   levels_.begin(), levelOf);
    for (std::size_t place = plain; place < count_; ++place) {
      levels_[place] = fields.convert(levelColumns(place), "a level", levelFrom);
    }
    for (std::size_t place = 0; place < count_; ++place) {
      if (!levels_[place]) continue;
      spectrum.SPL(static_cast<std::int16_t>(low_ + static_cast<std::int32_t>(place)),
                   *levels_[place]);
    }
  }

  static std::optional<double> levelFrom(std::string_view text) {
    if (text.empty()) return std::nullopt;
    return doubleFrom(text);
  }

  std::int16_t low_;
  std::size_t count_;
  // Buffers that all records share.
  std::vector<LevelCode> codes_;
  std::vector<std::optional<double>> levels_;
};

/// The date of each record, which advances when the time of day falls back.
class RecordDates {
 public:
  explicit RecordDates(double date) : date_(date) {}

  double next(double timeOfDay) {
    if (timeOfDay < before_) ++date_;
    before_ = timeOfDay;
    return date_;
  }

 private:
  double date_;
  double before_ = 0;
};

/// Reads the lines after the last record; all must be blank.
void expectOnlyBlanks(LineReader& lines) {
  while (lines.next()) {
    if (trimmed(lines.line()).empty()) continue;
    failRead(lines.number(), 0, "no more records than the header says", shown(lines.line()));
  }
}

}  // namespace

bool keepsDates(AQ_SpectralTimeHistory& history) {
  RecordDates dates(history.startTime()->CurrentDate());
  return std::all_of(history.begin(), history.end(), [&](const auto& numbered) {
    const AQ_Time time = orThrow(numbered.second).timeValue();
    constexpr double kWritten = 1e3;  // thousandths
    const double written = static_cast<double>(scaledBy(time.TODseconds(), kWritten)) / kWritten;
    const double date = dates.next(written);
    return time.CurrentDate() == 0 || time.CurrentDate() == date;
  });
}

void AQ_DataSPC::readRecords(LineReader& lines, const Settings& part,
                             AQ_SpectralTimeHistory& history) {
  SharedBlocks<AQ_Spectrum> spectra(part.last - part.first + 1);
  SharedBlocks<AQ_Time> times;
  LevelRow levels(part.low, part.high);
  RecordDates dates(history.startTime()->CurrentDate());
  for (std::int32_t record = part.first; record <= part.last; ++record) {
    takeLine(lines, "the line of record ", numberText(record));
    FixedFieldReader fields(lines);
    if (fields.convert(kRecord, "a record number", recordFrom) != record) {
      fields.fail("the record number " + numberText(record));
    }
    const auto time = times.next();
    const double timeOfDay =
        fields.convert(kTimeOfDay, "a time of day hh:mm:ss.sss", secondsOfDayFrom);
    time->assignSeconds(timeOfDay, fields.convert(kRelative, "a relative time", doubleFrom));
    time->CurrentDate(dates.next(timeOfDay));
    auto spectrum = spectra.next();
    spectrum->Time(time);
    levels.read(fields, *spectrum);
    fields.expectEnd(levels.lastColumn());
    history.spectrum(static_cast<std::int16_t>(record), std::move(spectrum));
  }
  expectOnlyBlanks(lines);
}

template <class Lines>
void AQ_DataSPC::header(Lines& lines, AQ_HeaderSTH& header, AQ_SpectralTimeHistory& history,
                        Settings& settings) {
  constexpr std::int16_t kLeast = std::numeric_limits<std::int16_t>::min();
  constexpr std::int16_t kMost = std::numeric_limits<std::int16_t>::max();
  AQ_AverageMethod averaging = history.AverageMethod();
  AQ_TimeStampType stamp = history.TimeStampType();
  AQ_RefTimeType reference = history.ReferenceType();
  lines.constant("SPC", "1", "layout version 1");
  lines.text("ProjectName", header.sProjectName);
  lines.text("MicrophoneID", header.sMicrophoneID);
  lines.word(keywords::kAveragingMethod, "an averaging method", averaging);
  lines.word(keywords::kTimeStampType, "a time stamp type", stamp);
  lines.text("AdjustmentCode", header.sAdjustmentCode);
  lines.dateTime("StartTime", *history.startTime());
  lines.dateTime("ReferenceTime", *history.ReferenceTime());
  lines.word(keywords::kReferenceTimeType, "a reference time type", reference);
  lines.seconds("RecordLength", settings.recordLength);
  lines.integer("NumberFirstRecord", settings.first, kLeast, kMost);
  lines.integer("NumberLastRecord", settings.last, settings.first, kMost);
  lines.integer("BandLow", settings.low, kLowestBand, kHighestBand);
  lines.integer("BandHigh", settings.high, settings.low, kHighestBand);
  lines.text("GeneratedBy", header.sGeneratedBy);
  lines.text("GenerationFile", header.sGenerationFile);
  lines.lines("OtherRecords", header.cOtherRecords);
  lines.lines("CommentLines", header.cCommentLines);
  history.AverageMethod(averaging);
  history.TimeStampType(stamp);
  history.ReferenceType(reference);
}

void AQ_DataSPC::RecordLength(const Variant& seconds) {
  const double length = seconds.toDouble();
  if (!(length > 0 && length < 1000)) {
    throw Error(ErrorCode::InvalidValue, "the record length must be above 0 and below 1000 s");
  }
  settings_.recordLength = length;
}

/// The settings, with each 0 replaced by the first or last record, or the lowest or highest band.
/// Does not use the history's `LoRec` and `HiRec`: they replace a 0 even where 0 is a record
/// number.
AQ_DataSPC::Settings AQ_DataSPC::chosen(const AQ_SpectralTimeHistory& history) const {
  Settings chosen = settings_;
  std::optional<std::int16_t> first;
  std::int16_t last = 0;
  for (const auto& [record, spectrum] : history) {
    if (!first) first = record;
    last = record;
  }
  if (!first) throw Error(ErrorCode::InvalidArgument, "the history has no records");
  if (chosen.first == 0) chosen.first = *first;
  if (chosen.last == 0) chosen.last = last;
  std::int16_t low = kHighestBand + 1;
  std::int16_t high = kLowestBand - 1;
  const std::int32_t end = std::max(chosen.first, chosen.last);  // at least the first record
  for (std::int32_t record = chosen.first; record <= end; ++record) {
    const AQ_Spectrum& spectrum = orThrow(history.spectrum(static_cast<std::int16_t>(record)));
    if (spectrum.begin() == spectrum.end()) continue;
    low = std::min(low, spectrum.LowBand());
    high = std::max(high, spectrum.HighBand());
  }
  if (low > high && (chosen.low == 0 || chosen.high == 0)) {
    throw Error(ErrorCode::InvalidValue, "no levels, and no settings for the bands to write");
  }
  if (chosen.low == 0) chosen.low = low;
  if (chosen.high == 0) chosen.high = high;
  return chosen;
}

AQ_DataMessage AQ_DataSPC::writeFile(const std::string& sFileName,
                                     AQ_SpectralTimeHistory& aqTimeHistory) {
  return writing(sFileName, [&](const std::string& /*name*/) {
    Settings part = chosen(aqTimeHistory);
    AQ_HeaderSTH empty;
    std::string text;
    FixedHeaderWriter lines(text);
    header(lines, header_ ? *header_ : empty, aqTimeHistory, part);
    appendHeadings(text, part.low, part.high);
    appendRows(text, part.first, part.last, [&](std::int32_t number) {
      const auto spectrum = aqTimeHistory.spectrum(static_cast<std::int16_t>(number));
      appendRecord(text, number, *spectrum, part.low, part.high);
    });
    return text;
  });
}

AQ_DataMessage AQ_DataSPC::readFile(const std::string& sFileName,
                                    std::shared_ptr<AQ_HeaderSTH>& aqHeader,
                                    std::shared_ptr<AQ_SpectralTimeHistory>& STH) {
  return reading(sFileName, [&](const std::string& name) {
    auto history = std::make_shared<AQ_SpectralTimeHistory>();
    auto newHeader = std::make_shared<AQ_HeaderSTH>();
    Settings part;
    LineReader lines(name);
    FixedHeaderReader headerLines(lines, headerObserver());
    header(headerLines, *newHeader, *history, part);
    headerLines.headings();
    settings_ = part;
    header_ = newHeader;
    aqHeader = std::move(newHeader);
    readRecords(lines, part, *history);
    STH = std::move(history);
  });
}

}  // namespace aq
