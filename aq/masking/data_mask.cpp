#include "aq/masking/data_mask.h"

#include <algorithm>

#include "aq/core/band_label.h"
#include "aq/core/platform.h"
#include "aq/detail/pointers.h"
#include "aq/detail/shared_blocks.h"
#include "aq/text/checked_keywords.h"
#include "aq/text/fields.h"
#include "aq/text/header_reader.h"
#include "aq/text/header_writer.h"
#include "aq/text/number_text.h"

namespace aq {
namespace {

template <class Lines>
void header(Lines& lines, AQ_HeaderMask& header) {
  lines.title(AQ_DataMask::kTitle);
  lines.recordedName("FileName", header.sFileName);
  lines.currentDateTime("FileDateTime", header.aqFileDateTime);
  lines.integer(keywords::kNumberOfRows, header.lNumberRows);
  lines.integers(keywords::kBands, ", ", header.iBandLow, header.iBandHigh);
  lines.text("GeneratedBy", header.sGeneratedBy);
  lines.recordedName("GenerationFile", header.sGenerationFile);
  lines.dateTimeOf("GenerationFileDateTime", header.sGenerationFile, header.aqGenerationDateTime);
  lines.lines("OtherRecords", header.cOtherRecords, header.nOtherRecords);
  lines.lines("NumberOfCommentLines", header.cCommentLines, header.nCommentLines);
}

/// The label of the highest band appears twice, since hosts rely on that.
std::string columnHeading(const AQ_HeaderMask& header) {
  std::string heading = "Rec#,";
  if (header.iBandLow <= header.iBandHigh) {
    appendBandLabels(heading, header.iBandLow, header.iBandHigh);
    heading += ',';
  }
  heading += bandLabel(header.iBandHigh);
  return heading + ",LGB";
}

/// Writes the masks from `LowBand` to `HighBand`; creates a default mask in each of these bands
/// that has none.
char* putDecisions(char* at, AQ_MaskRow& row) {
  const auto codes = row.codes();
  char* const end = codes.empty() ? nullptr : putMasks(at, codes);
  if (end != nullptr) return end;
  for (std::int32_t band = row.LowBand(); band <= row.HighBand(); ++band) {
    const std::string letters = row.decision(static_cast<std::int16_t>(band)).MaskString();
    at = std::copy(letters.begin(), letters.end(), at);
    *at++ = ',';
  }
  return at;
}

/// Written in place: a map is mostly letters, and one append per field would take longer than
/// copying the letters.
void appendRow(std::string& text, std::int16_t record, AQ_MaskRow& row) {
  const std::size_t begin = text.size();
  const auto bands = static_cast<std::size_t>(std::max(row.HighBand() - row.LowBand() + 1, 0));
  text.resize(begin + 2 * kIntegerSize + maskBytes(bands));
  char* at = putNumber(text.data() + begin, record);
  *at++ = ',';
  at = putNumber(putDecisions(at, row), row.LGB());
  text.resize(static_cast<std::size_t>(at - text.data()));
  text += platform::lineEnd;
}

AQ_Mask maskFrom(FieldReader& fields) {
  constexpr const char* kExpected = "a mask of two letters";
  const std::string_view letters = fields.text(kExpected);
  if (letters.size() != 2) fields.fail(kExpected);
  AQ_Mask mask;
  mask.MaskString(letters);
  return mask;
}

std::size_t bandCount(const AQ_HeaderMask& header) {
  const int count = header.iBandHigh - header.iBandLow + 1;
  return static_cast<std::size_t>(std::max(count, 0));
}

/// Uses the bands of the header, which may differ from those that the row had when written.
void readRow(FieldReader fields, const AQ_HeaderMask& header, std::shared_ptr<AQ_MaskRow> row,
             AQ_MaskMap& map) {
  const std::int16_t record = fields.int16("a record number");
  const std::size_t count = bandCount(header);
  // The header may claim any number of bands; if the line has fewer fields, taking one field too
  // many throws before `codes` is overrun.
  const auto codes = row->renew(header.iBandLow, std::min(count, fields.mostLeft()));
  for (std::size_t i = fields.takeRun(codes, masksAtFront); i < count; ++i) {
    codes[i] = maskCodeOf(maskFrom(fields));
  }
  row->LGB(fields.int16("the last good band"));
  map.Row(record, std::move(row));
}

}  // namespace

AQ_DataMessage AQ_DataMask::writeFile(const std::string& sFileName,
                                      const std::shared_ptr<AQ_HeaderMask>& aqHeader,
                                      const AQ_MaskMap& aqMaskMap) {
  return writing(sFileName, [&](const std::string& name) {
    header_ = aqHeader;
    AQ_HeaderMask& header = orThrow(header_);
    const std::int32_t count = aqMaskMap.Count();
    header.sFileName = name;
    header.lNumberRows = count;
    header.iBandLow = orThrow(aqMaskMap.Row(1)).LowBand();
    header.iBandHigh = orThrow(aqMaskMap.Row(1)).HighBand();
    std::string text;
    HeaderWriter lines(text, fileInformation());
    aq::header(lines, header);
    lines.columns(columnHeading(header));
    appendRows(text, 1, count, [&](std::int32_t number) {
      const auto record = static_cast<std::int16_t>(number);
      appendRow(text, record, orThrow(aqMaskMap.heldRow(record)));
    });
    return text;
  });
}

AQ_DataMessage AQ_DataMask::readFile(const std::string& sFileName,
                                     std::shared_ptr<AQ_HeaderMask>& aqHeader,
                                     std::shared_ptr<AQ_MaskMap>& MaskMap) {
  return reading(sFileName, [&](const std::string& name) {
    LineReader lines(name);
    HeaderReader headerLines(lines, headerObserver());
    header_ = std::make_shared<AQ_HeaderMask>();
    aq::header(headerLines, *header_);
    header_->sFileType = AQ_DataMask::kTitle;
    header_->sColumnLabels = headerLines.columns();
    aqHeader = header_;
    MaskMap = std::make_shared<AQ_MaskMap>();
    SharedBlocks<AQ_MaskRow> rows(header_->lNumberRows);
    while (lines.next()) readRow(FieldReader(lines), *header_, rows.next(), *MaskMap);
  });
}

}  // namespace aq
