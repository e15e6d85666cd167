#include "aq/check/checks.h"
#include "aq/check/header_check.h"
#include "aq/check/line_shapes.h"
#include "aq/text/checked_keywords.h"

namespace aq {

void check(FileOf<AQ_DataMIC> file, const Reporter& report) {
  constexpr std::size_t kCoordinates = 4;  // X, Y, Z and the height
  HeaderCheck header(report);
  Content<AQ_HeaderMIC, AQ_Microphone> read;
  if (!header.reads<AQ_DataMIC>(file.path, read)) return;
  header.expectHeadings(keywords::kMicrophoneHeadings);
  const LineShapes shapes(file.path, header.lines(), {kCoordinates, kCoordinates});
  if (shapes.count() == 1) shapes.report(file.path, report);
  checkNothingAfter(file.path, header.lines() + 1, report);
}

}  // namespace aq
