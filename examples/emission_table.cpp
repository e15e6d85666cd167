// Fills a table of emission and reception times and positions from a track, and reads it column by
// column:
//   emission_table TRACKING MICROPHONE
#include <cmath>

#include "examples/outcome.h"

namespace {

constexpr double kSpeedOfSound = 343;  // m/s

std::shared_ptr<aq::AQ_EmtRcvRecord> emission(const std::shared_ptr<aq::AQ_Position>& aircraft,
                                              const aq::AQ_Microphone& microphone) {
  auto record = std::make_shared<aq::AQ_EmtRcvRecord>();
  record->ACPosition(aircraft);
  record->SR = std::hypot(aircraft->X() - microphone.X, aircraft->Y() - microphone.Y,
                          aircraft->Z() - microphone.Z - microphone.Height);
  record->Tprop = record->SR / kSpeedOfSound;
  record->T(aircraft->Time());
  record->Tr()->TODseconds(aircraft->Time()->TODseconds() + record->Tprop);
  return record;
}

}  // namespace

int main(int argc, char** argv) {
  if (argc != 3) return 2;
  aq::AQ_DataMessage result = aq::AQ_DATA_FILE_ERROR;
  aq::AQ_DataTSPI tracking;
  std::shared_ptr<aq::AQ_PositionTimeHistory> track;
  tracking.readFile(argv[1], track, result);
  if (!isGood(result, tracking)) return 1;
  aq::AQ_DataMIC microphoneFile;
  std::shared_ptr<aq::AQ_HeaderMIC> header;
  const auto microphone = std::make_shared<aq::AQ_Microphone>();
  microphoneFile.readFile(argv[2], header, microphone, result);
  if (!isGood(result, microphoneFile)) return 1;

  aq::AQ_EmtRcvTable table;
  for (std::int32_t place = 1; place <= track->Count(); ++place) {
    table.Record(place, emission(track->Position(place), *microphone));
  }
  const auto emitted = table.T();
  const auto received = table.Tr();
  const auto heights = table.Z();
  for (std::int32_t place = 1; place <= table.Count(); place += 10) {
    std::cout << "emitted " << emitted->Item(place) << " s at " << heights->Item(place)
              << " m, received " << received->Item(place) << " s\n";
  }
}
