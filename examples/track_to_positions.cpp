// Turns a tracking file into a position file; fixes with an RT20 figure above a limit are dropped:
//   track_to_positions TRACKING POSITIONS LIMIT
#include <cstdlib>

#include "examples/outcome.h"

int main(int argc, char** argv) {
  if (argc != 4) return 2;
  aq::AQ_DataTSPI tracking;
  tracking.RT20Limit(static_cast<std::uint8_t>(std::atoi(argv[3])));
  std::shared_ptr<aq::AQ_PositionTimeHistory> track;
  aq::AQ_DataMessage result = aq::AQ_DATA_FILE_ERROR;
  tracking.readFile(argv[1], track, result);
  if (!isGood(result, tracking)) return 1;

  const auto header = std::make_shared<aq::AQ_HeaderPTH>();
  header->sProjectName = "Fly-over sample";
  header->sGeneratedBy = "track_to_positions";
  header->sTSPIFileName = argv[1];
  aq::AQ_DataPTH positions;
  positions.writeFile(argv[2], header, *track, result);
  if (!isGood(result, positions)) return 1;
  std::cout << track->Count() << " positions, " << tracking.nBadPositions() << " fixes dropped\n";
}
