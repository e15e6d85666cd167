#include "aq/files/data_ssr.h"

#include "aq/core/band_label.h"
#include "aq/detail/pointers.h"
#include "aq/files/level_columns.h"
#include "aq/text/fields.h"
#include "aq/text/header_reader.h"
#include "aq/text/header_writer.h"
#include "aq/text/number_text.h"

namespace aq {
namespace {

template <class Lines>
void header(Lines& lines, AQ_HeaderSSR& header) {
  lines.title(AQ_DataSSR::kTitle);
  lines.recordedName("FileName", header.sFileName);
  lines.currentDateTime("FileDateTime", header.aqFileDateTime);
  lines.lines("NumberOfCommentLines", header.cCommentLines);
}

/// The band of a label such as "B17/50Hz": the text between its first character and its slash.
std::int16_t bandOf(std::string_view label) {
  const std::size_t slash = label.find('/', 1);
  if (slash == label.npos) throw Error(ErrorCode::InvalidArgument, "a label without a slash");
  return int16From(label.substr(1, slash - 1));
}

/// The first and the last label determine the bands; those between are ignored.
LevelColumns columnsFrom(FieldReader labels) {
  constexpr const char* kExpected = "a band label";
  LevelColumns columns;
  columns.low = labels.convert(kExpected, bandOf);
  columns.high = labels.convertLast(kExpected, bandOf);
  return columns;
}

}  // namespace

AQ_DataMessage AQ_DataSSR::writeFile(const std::string& sFileName,
                                     const std::shared_ptr<AQ_HeaderSSR>& aqHeader,
                                     const AQ_Spectrum& spectrum) {
  return writing(sFileName, [&](const std::string& name) {
    header_ = aqHeader;
    orThrow(header_).sFileName = name;
    std::string text;
    HeaderWriter lines(text, fileInformation());
    header(lines, *header_);
    std::string line;
    appendBandLabels(line, spectrum.LowBand(), spectrum.HighBand());
    lines.columns(line);
    line.clear();
    appendLevels(line, spectrum);
    lines.columns(line);
    return text;
  });
}

AQ_DataMessage AQ_DataSSR::readFile(const std::string& sFileName,
                                    std::shared_ptr<AQ_Spectrum>& specNew,
                                    std::shared_ptr<AQ_HeaderSSR>& ssrHeader) {
  return reading(sFileName, [&](const std::string& name) {
    LineReader lines(name);
    HeaderReader headerLines(lines, headerObserver());
    header_ = std::make_shared<AQ_HeaderSSR>();
    header(headerLines, *header_);
    ssrHeader = header_;
    takeLine(lines, "the line of band labels");
    showLine(headerObserver(), {lines.number(), HeaderLine::Use::Headings, {}, lines.line(), {}});
    LevelColumns columns = columnsFrom(FieldReader(lines));
    takeLine(lines, "the line of levels");
    FieldReader levels(lines);
    auto spectrum = std::make_shared<AQ_Spectrum>();
    columns.read(levels, *spectrum);
    specNew = std::move(spectrum);
  });
}

AQ_DataMessage AQ_DataSSR::readFile(const std::string& sFileName,
                                    std::shared_ptr<AQ_Spectrum>& specNew) {
  std::shared_ptr<AQ_HeaderSSR> ssrHeader;
  return readFile(sFileName, specNew, ssrHeader);
}

}  // namespace aq
