#include "aq/geometry/data_pth.h"

#include "aq/core/platform.h"
#include "aq/detail/pointers.h"
#include "aq/detail/shared_blocks.h"
#include "aq/text/checked_keywords.h"
#include "aq/text/data_line_limit.h"
#include "aq/text/fields.h"
#include "aq/text/header_reader.h"
#include "aq/text/header_writer.h"
#include "aq/text/number_text.h"

namespace aq {
namespace {

template <class Lines>
void header(Lines& lines, AQ_HeaderPTH& header) {
  lines.title(AQ_DataPTH::kTitle);
  lines.recordedName("FileName", header.sFileName);
  lines.currentDateTime("FileDateTime", header.aqFileDateTime);
  lines.textAfterBlank("ProjectName", header.sProjectName);
  lines.text("GeneratedBy", header.sGeneratedBy);
  lines.recordedName("TSPIFileName", header.sTSPIFileName);
  lines.dateTimeOf("TSPIFileDateTime", header.sTSPIFileName, header.sTSPIFileDateTime);
  lines.integer(keywords::kNumberRecords, header.lNumberRecords);
  lines.lines("OtherRecords", header.cOtherRecords, header.nOtherRecords);
  lines.lines("NumberOfCommentLines", header.cCommentLines, header.nCommentLines);
}

void appendPosition(std::string& text, const AQ_Position& position) {
  position.lazyTime().value().appendTODstring(text);
  for (const double coordinate : {position.X(), position.Y(), position.Z()}) {
    text += ',';
    appendNumber(text, coordinate);
  }
  text += platform::lineEnd;
}

void readPosition(FieldReader fields, AQ_Position& position) {
  position.lazyTime().assign(fields.timeOfDay());
  position.X(fields.number("a coordinate"));
  position.Y(fields.number("a coordinate"));
  position.Z(fields.number("a coordinate"));
}

}  // namespace

void AQ_DataPTH::writeFile(const std::string& sFileName,
                           const std::shared_ptr<AQ_HeaderPTH>& aqHeader,
                           const AQ_PositionTimeHistory& aqTimeHistory, AQ_DataMessage& result) {
  result = writing(sFileName, [&](const std::string& name) {
    header_ = aqHeader;
    orThrow(header_).sFileName = name;
    const std::int32_t count = aqTimeHistory.Count();
    header_->lNumberRecords = count;
    std::string text;
    HeaderWriter lines(text, fileInformation());
    header(lines, *header_);
    lines.columns(keywords::kPositionHeadings);
    appendRows(text, 1, count, [&](std::int32_t place) {
      appendPosition(text, orThrow(aqTimeHistory.Position(place)));
    });
    return text;
  });
}

void AQ_DataPTH::readFile(const std::string& sFileName, std::shared_ptr<AQ_HeaderPTH>& aqHeader,
                          std::shared_ptr<AQ_PositionTimeHistory>& PTH, AQ_DataMessage& result) {
  result = reading(sFileName, [&](const std::string& name) {
    LineReader lines(name);
    HeaderReader headerLines(lines, headerObserver());
    header_ = std::make_shared<AQ_HeaderPTH>();
    header(headerLines, *header_);
    header_->sFileType = AQ_DataPTH::kTitle;
    headerLines.skipColumns();
    aqHeader = header_;
    auto history = std::make_shared<AQ_PositionTimeHistory>();
    SharedBlocks<AQ_Position> positions(header_->lNumberRecords);
    DataLineLimit limit;
    while (lines.next()) {
      auto position = positions.next();
      readPosition(FieldReader(lines), *position);
      history->Position(limit.count(lines), std::move(position));
    }
    PTH = std::move(history);
  });
}

}  // namespace aq
