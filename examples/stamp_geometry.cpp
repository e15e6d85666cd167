// Makes the emission geometry of a level flight, stamps it and writes it:
//   stamp_geometry OUT
#include <cmath>

#include "examples/outcome.h"

int main(int argc, char** argv) {
  if (argc != 2) return 2;
  constexpr double kHeight = 150;  // m
  constexpr double kSpeed = 85;    // m/s
  aq::AQ_GeometryTimeHistory history;
  for (int record = 1; record <= 60; ++record) {
    const auto point = std::make_shared<aq::AQ_Geometry>();
    point->Pe()->X(kSpeed * (record - 30) * 0.5);
    point->Pe()->Z(kHeight);
    point->SRe = std::hypot(point->Pe()->X(), kHeight);
    point->Tprope = point->SRe / 343;
    point->THETAe = static_cast<float>(std::atan2(kHeight, point->Pe()->X()) * 180 / 3.14159265);
    history.Point(record, point);
  }
  aq::AQ_Time start;
  aq::AQ_Time overhead;
  start.TODstring("14:30:00");
  overhead.TODstring("14:30:14.75");
  history.setTimeStamps(start, aq::AQ_MIDPT, overhead, aq::AQ_OVERHEAD);
  for (int record = 1; record <= history.Count(); ++record) {
    const auto point = history.Point(record);
    point->Te()->TODseconds(point->Tm()->TODseconds() - point->Tprope);
  }

  const auto header = std::make_shared<aq::AQ_HeaderGTH>();
  header->ProjectName = "Fly-over sample";
  header->GeneratedBy = "stamp_geometry";
  header->MicrophoneID = "M1";
  aq::AQ_DataGTH file;
  aq::AQ_DataMessage result = aq::AQ_DATA_FILE_ERROR;
  file.writeFile(argv[1], header, history, result);
  return isGood(result, file) ? 0 : 1;
}
