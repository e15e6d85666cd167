#include "aq/geometry/data_mic.h"

#include "aq/text/fields.h"
#include "aq/text/header_reader.h"

namespace aq {
namespace {

void readHeader(HeaderReader& lines, AQ_HeaderMIC& header) {
  lines.title(AQ_DataMIC::kTitle);
  header.sFileType = AQ_DataMIC::kTitle;
  lines.recordedName("FileName", header.sFileName);
  lines.currentDateTime("FileDateTime", header.aqFileDateTime);
  lines.text("ProjectName", header.sProjectName);
  lines.text("MicrophoneID", header.sMicrophoneID);
  lines.lines("OtherRecords", header.cOtherRecords, header.nOtherRecords);
  lines.lines("NumberOfCommentLines", header.cCommentLines, header.nCommentLines);
}

void readMicrophone(FieldReader fields, AQ_Microphone& microphone) {
  microphone.X = fields.number("a coordinate");
  microphone.Y = fields.number("a coordinate");
  microphone.Z = fields.number("a coordinate");
  microphone.Height = fields.number("a height");
}

}  // namespace

void AQ_DataMIC::readFile(const std::string& sFileName, std::shared_ptr<AQ_HeaderMIC>& aqHeader,
                          const std::shared_ptr<AQ_Microphone>& MIC, AQ_DataMessage& result) {
  result = reading(sFileName, [&](const std::string& name) {
    LineReader lines(name);
    HeaderReader headerLines(lines, headerObserver());
    header_ = std::make_shared<AQ_HeaderMIC>();
    readHeader(headerLines, *header_);
    aqHeader = header_;
    headerLines.skipColumns();
    takeLine(lines, "the microphone's line");
    if (!MIC) failRead(0, 0, "a microphone to fill", "no object");
    readMicrophone(FieldReader(lines), *MIC);
  });
}

}  // namespace aq
