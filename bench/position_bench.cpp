// Reading a position history of 32,767 lines, compared with a plain loop that calls from_chars.
#include <charconv>
#include <vector>

#include "bench/benches.h"
#include "bench/pairs.h"

namespace bench {
namespace {

struct PlainPosition {
  double timeOfDay = 0;
  double x = 0;
  double y = 0;
  double z = 0;
};
using PlainPositions = std::vector<std::shared_ptr<PlainPosition>>;

PlainPositions plainReadPositions(const std::string& path) {
  const std::string bytes = bytesOf(path);
  const char* const end = bytes.data() + bytes.size();
  const char* at = bytes.data() + bytes.find('\n', bytes.find("\nTOD,") + 1) + 1;
  PlainPositions positions;
  while (at < end) {
    auto position = std::make_shared<PlainPosition>();
    int hours = 0;
    int minutes = 0;
    at = std::from_chars(at, end, hours).ptr + 1;
    at = std::from_chars(at, end, minutes).ptr + 1;
    at = std::from_chars(at, end, position->timeOfDay).ptr + 1;
    position->timeOfDay += hours * 3600 + minutes * 60;
    at = std::from_chars(at, end, position->x).ptr + 1;
    at = std::from_chars(at, end, position->y).ptr + 1;
    at = std::from_chars(at, end, position->z).ptr + 1;
    positions.push_back(std::move(position));
  }
  return positions;
}

}  // namespace

void addPositions() {
  const std::string path = fileInFolder("positions.csv");
  aq::AQ_PositionTimeHistory track;
  for (int record = 1; record <= 32767; ++record) {
    auto position = std::make_shared<aq::AQ_Position>();
    position->Time()->TODseconds(36000 + record * 0.1);
    position->X(-1484.1 + record * 9.31);
    position->Y(0.1);
    position->Z(516.9 - record * 0.0123);
    track.Position(record, position);
  }
  aq::AQ_DataPTH file;
  aq::AQ_DataMessage result = aq::AQ_DATA_FILE_ERROR;
  file.writeFile(path, std::make_shared<aq::AQ_HeaderPTH>(), track, result);
  require(result == aq::AQ_DATA_OK, "writing positions");
  addPair(
      "positions 32,767 read",
      [=, kept = std::make_shared<PlainPositions>()] { *kept = plainReadPositions(path); },
      [=, kept = std::make_shared<std::shared_ptr<aq::AQ_PositionTimeHistory>>()] {
        aq::AQ_DataPTH reader;
        std::shared_ptr<aq::AQ_HeaderPTH> header;
        aq::AQ_DataMessage outcome = aq::AQ_DATA_FILE_ERROR;
        reader.readFile(path, header, *kept, outcome);
        require(outcome == aq::AQ_DATA_OK, "reading positions");
      });
}

}  // namespace bench
