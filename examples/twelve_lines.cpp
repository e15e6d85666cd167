// Reads a history and its masking map, and finds the last good bands.
#include <aq/aq.h>

#include <iostream>

int main(int, char** argv) {
  std::shared_ptr<aq::AQ_HeaderSTH> header;
  std::shared_ptr<aq::AQ_SpectralTimeHistory> history;
  std::shared_ptr<aq::AQ_HeaderMask> mapHeader;
  std::shared_ptr<aq::AQ_MaskMap> map;
  aq::AQ_DataSTH file;
  aq::AQ_DataMask mapFile;
  if (file.readFile(argv[1], header, history) != aq::AQ_DATA_OK) return 1;
  if (mapFile.readFile(argv[2], mapHeader, map) != aq::AQ_DATA_OK) return 1;
  history->setLGB(*map);
  std::cout << header->sProjectName << ": " << history->Count() << " records, last good band of "
            << "the first " << history->spectrum(history->LoRec())->Metric()->LGB() << '\n';
}
