#include "aq/geometry/data_gth.h"

#include "aq/core/platform.h"
#include "aq/detail/pointers.h"
#include "aq/text/checked_keywords.h"
#include "aq/text/data_line_limit.h"
#include "aq/text/fields.h"
#include "aq/text/header_reader.h"
#include "aq/text/header_writer.h"
#include "aq/text/number_text.h"

namespace aq {
namespace {

// Some keywords, such as `PTHDateTime`, differ from the names of their fields; hosts rely on this.
template <class Lines>
void header(Lines& lines, AQ_HeaderGTH& header) {
  AQ_Position& microphone = orThrow(header.MicrophonePosition);
  double x = microphone.X();
  double y = microphone.Y();
  double z = microphone.Z();
  lines.title(AQ_DataGTH::kTitle);
  lines.recordedName("FileName", header.GTHFileName);
  lines.currentDateTime12("FileDateTime", header.GTHFileDateTime);
  lines.text("ProjectName", header.ProjectName);
  lines.text("GeneratedBy", header.GeneratedBy);
  lines.text("MicrophoneID", header.MicrophoneID);
  lines.numbers("MicrophonePosition", x, y, z);
  lines.single(keywords::kTemperature, header.Temperature);
  lines.recordedName("STHFileName", header.STHFileName);
  lines.dateTimeOf("STHFileDateTime", header.STHFileName, header.STHFileDateTime);
  lines.recordedName("PTHFileName", header.PTHFileName);
  lines.dateTimeOf("PTHDateTime", header.PTHFileName, header.PTHFileDateTime);
  lines.recordedName("MICFileName", header.MICFileName);
  lines.dateTimeOf("MICDateTime", header.MICFileName, header.MICFileDateTime);
  lines.integer(keywords::kNumberRecords, header.NumberRecords);
  lines.lines("OtherRecords", header.colOtherRecords, header.OtherRecords);
  lines.lines("NumberOfCommentLines", header.colCommentLines, header.nCommentLines);
  microphone.X(x);
  microphone.Y(y);
  microphone.Z(z);
}

/// The last of the eleven columns has no heading; hosts rely on this.
void appendPoint(std::string& text, std::int32_t record, AQ_Geometry& point) {
  const auto field = [&text](auto value) {
    text += ',';
    appendNumber(text, value);
  };
  appendNumber(text, record);
  text += ',';
  point.Tm()->appendTODstring(text);
  text += ',';
  point.Te()->appendTODstring(text);
  field(point.Tprope);
  field(point.Pe()->X());
  field(point.Pe()->Y());
  field(point.Pe()->Z());
  field(point.SRe);
  field(point.THETAe);
  field(point.BETAe);
  field(point.debugTime);
  text += platform::lineEnd;
}

void readPoint(FieldReader fields, AQ_GeometryTimeHistory& history) {
  auto point = std::make_shared<AQ_Geometry>();
  const std::int16_t record = fields.int16("a record number");
  point->Tm()->assignSeconds(fields.timeOfDay(), 0);
  point->Te()->assignSeconds(fields.timeOfDay(), 0);
  point->Tprope = fields.number("a propagation time");
  point->Pe()->X(fields.number("a coordinate"));
  point->Pe()->Y(fields.number("a coordinate"));
  point->Pe()->Z(fields.number("a coordinate"));
  point->SRe = fields.number("a slant range");
  point->THETAe = fields.single("an angle");
  point->BETAe = fields.single("an angle");
  history.Point(record, std::move(point));
}

}  // namespace

void AQ_DataGTH::writeFile(const std::string& sFileName,
                           const std::shared_ptr<AQ_HeaderGTH>& aqHeader,
                           const AQ_GeometryTimeHistory& aqTimeHistory, AQ_DataMessage& result) {
  result = writing(sFileName, [&](const std::string& name) {
    header_ = aqHeader;
    orThrow(header_).GTHFileName = name;
    const std::int32_t count = aqTimeHistory.Count();
    header_->NumberRecords = count;
    std::string text;
    HeaderWriter lines(text, fileInformation());
    header(lines, *header_);
    lines.columns(keywords::kGeometryHeadings);
    appendRows(text, 1, count, [&](std::int32_t record) {
      appendPoint(text, record, orThrow(aqTimeHistory.Point(record)));
    });
    return text;
  });
}

void AQ_DataGTH::readFile(const std::string& sFileName, std::shared_ptr<AQ_HeaderGTH>& aqHeader,
                          std::shared_ptr<AQ_GeometryTimeHistory>& GTH, AQ_DataMessage& result) {
  result = reading(sFileName, [&](const std::string& name) {
    LineReader lines(name);
    HeaderReader headerLines(lines, headerObserver());
    header_ = std::make_shared<AQ_HeaderGTH>();
    header(headerLines, *header_);
    header_->FileType = AQ_DataGTH::kTitle;
    headerLines.skipColumns();
    aqHeader = header_;
    auto history = std::make_shared<AQ_GeometryTimeHistory>();
    DataLineLimit limit;
    while (lines.next()) {
      limit.count(lines);
      readPoint(FieldReader(lines), *history);
    }
    GTH = std::move(history);
  });
}

}  // namespace aq
