#include "aq/files/data_sth.h"

#include <array>

#include "aq/core/band_label.h"
#include "aq/core/platform.h"
#include "aq/detail/pointers.h"
#include "aq/detail/shared_blocks.h"
#include "aq/files/level_columns.h"
#include "aq/text/checked_keywords.h"
#include "aq/text/date_text.h"
#include "aq/text/fields.h"
#include "aq/text/header_reader.h"
#include "aq/text/header_writer.h"
#include "aq/text/number_text.h"

namespace aq {
namespace {

constexpr std::string_view kFirstHeading = "Rec#";
// The heading always names these bands, even if the records hold others: hosts rely on it.
constexpr std::int16_t kHeadingLow = 17;
constexpr std::int16_t kHeadingHigh = 40;

/// Returns the number of records according to the header.
template <class Lines>
std::int16_t header(Lines& lines, AQ_HeaderSTH& header, AQ_SpectralTimeHistory& history,
                    LevelColumns& columns) {
  std::int16_t count = history.Count();
  std::int16_t low = history.LoRec();
  std::int16_t high = history.HiRec();
  lines.title(AQ_DataSTH::kTitle);
  lines.recordedName("FileName", header.sFileName);
  lines.currentDateTime("FileDateTime", header.aqFileDateTime);
  lines.text("ProjectName", header.sProjectName);
  lines.text("MicrophoneID", header.sMicrophoneID);
  lines.value(
      keywords::kAveragingMethod, [&] { return history.sAveragingMethod(); },
      [&](std::string_view text) { history.sAveragingMethod(upperCased(text)); });
  lines.value(
      keywords::kTimeStampType, [&] { return history.sTimeStampType(); },
      [&](std::string_view text) { history.sTimeStampType(upperCased(text)); });
  lines.text("AdjustmentCode", header.sAdjustmentCode);
  lines.timeOfDay("StartTime", *history.startTime());
  lines.timeOfDay("ReferenceTime", *history.ReferenceTime());
  lines.value(
      keywords::kReferenceTimeType, [&] { return history.sReferenceTimeType(); },
      [&](std::string_view text) { history.sReferenceTimeType(upperCased(text)); });
  lines.integer(keywords::kNumberOfSpectrum, count);
  lines.integers(keywords::kRecordNumbers, ",", low, high);
  history.LoRec(low);
  history.HiRec(high);
  lines.integers(keywords::kBands, ", ", columns.low, columns.high);
  lines.text("GeneratedBy", header.sGeneratedBy);
  lines.recordedName("GenerationFile", header.sGenerationFile);
  lines.dateTimeOf("GenerationFileDateTime", header.sGenerationFile, header.aqGenerationDateTime);
  lines.lines("OtherRecords", header.cOtherRecords);
  lines.lines("NumberOfCommentLines", header.cCommentLines);
  return count;
}

std::string columnHeading() {
  std::string heading(kFirstHeading);
  heading += ",TOD,RelTime,";
  appendBandLabels(heading, kHeadingLow, kHeadingHigh);
  return heading;
}

void appendRecord(std::string& text, std::int16_t record, const AQ_Spectrum& spectrum) {
  const AQ_Time time = spectrum.timeValue();
  std::array<char, kIntegerSize + kTimeOfDaySize + kNumberSize + 3> columns;
  char* at = putNumber(columns.data(), std::int32_t{record});
  *at++ = ',';
  at = putTimeOfDay(at, time.TODseconds());
  *at++ = ',';
  at = putNumber(at, time.RelSeconds());
  if (spectrum.LowBand() <= spectrum.HighBand()) *at++ = ',';
  text.append(columns.data(), at);
  appendLevels(text, spectrum);
  text += platform::lineEnd;
}

void readRecord(FieldReader fields, LevelColumns& columns, std::shared_ptr<AQ_Spectrum> spectrum,
                AQ_SpectralTimeHistory& history) {
  const std::int16_t record = fields.int16("a record number");
  const double timeOfDay = fields.timeOfDay();
  const float relative = fields.single("a relative time in seconds");
  spectrum->lazyTime().assign(timeOfDay, static_cast<double>(relative));
  columns.read(fields, *spectrum);
  history.spectrum(record, std::move(spectrum));
}

}  // namespace

AQ_DataMessage AQ_DataSTH::writeFile(const std::string& sFileName,
                                     const std::shared_ptr<AQ_HeaderSTH>& aqHeader,
                                     AQ_SpectralTimeHistory& aqTimeHistory) {
  return writing(sFileName, [&](const std::string& name) {
    header_ = aqHeader;
    orThrow(header_).sFileName = name;
    const std::int32_t low = aqTimeHistory.LoRec();
    const std::int32_t high = aqTimeHistory.HiRec();
    if (aqTimeHistory.begin() == aqTimeHistory.end()) {
      throw Error(ErrorCode::InvalidArgument, "the history has no records");
    }
    const auto record = [&](std::int32_t number) -> AQ_Spectrum& {
      return orThrow(aqTimeHistory.spectrum(static_cast<std::int16_t>(number)));
    };
    LevelColumns columns{record(low).LowBand(), record(low).HighBand()};
    std::string text;
    HeaderWriter lines(text, fileInformation());
    static_cast<void>(header(lines, *header_, aqTimeHistory, columns));
    lines.columns(columnHeading());
    appendRows(text, low, high, [&](std::int32_t number) {
      appendRecord(text, static_cast<std::int16_t>(number), record(number));
    });
    return text;
  });
}

AQ_DataMessage AQ_DataSTH::readFile(const std::string& sFileName,
                                    std::shared_ptr<AQ_HeaderSTH>& aqHeader,
                                    std::shared_ptr<AQ_SpectralTimeHistory>& STH) {
  return reading(sFileName, [&](const std::string& name) {
    auto history = std::make_shared<AQ_SpectralTimeHistory>();
    LineReader lines(name);
    HeaderReader headerLines(lines, headerObserver());
    header_ = std::make_shared<AQ_HeaderSTH>();
    LevelColumns columns;
    const std::int16_t count = header(headerLines, *header_, *history, columns);
    headerLines.skipColumns();
    aqHeader = header_;
    SharedBlocks<AQ_Spectrum> spectra(count);
    while (lines.next()) readRecord(FieldReader(lines), columns, spectra.next(), *history);
    STH = std::move(history);
  });
}

bool AQ_DataSTH::getRawHeader(const std::string& sFileName,
                              std::shared_ptr<Collection<std::string>>& colHeader) {
  const AQ_DataMessage result = reading(sFileName, [&](const std::string& name) {
    auto header = std::make_shared<Collection<std::string>>();
    LineReader lines(name);
    HeaderReader(lines).titleAfterComma(AQ_DataSTH::kTitle);
    bool more = true;
    for (; more && !lines.line().starts_with(kFirstHeading); more = lines.next()) {
      header->Add(std::string(lines.line()));
    }
    if (more && !lines.next()) failRead(lines.number() + 1, 0, "a record", "the end of the file");
    colHeader = std::move(header);
  });
  return result == AQ_DATA_OK;
}

}  // namespace aq
