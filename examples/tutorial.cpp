// The program of the C++ tutorial: reads a history and an ambient, makes a masking map, computes
// the EPNL, and writes the results.
//   tutorial HISTORY AMBIENT HISTORY_OUT MAP_OUT
#include <aq/aq.h>

#include <iostream>

int main(int argc, char** argv) {
  if (argc != 5) return 2;
  aq::setFileInformation(aq::keepingFileInformation());  // keep the date of the recording
  aq::AQ_DataSTH historyFile;
  aq::HistoryWords words;  // collects the reference type, which readFile does not set
  historyFile.observeHeader([&](const aq::HeaderLine& line) { words.see(line); });
  std::shared_ptr<aq::AQ_HeaderSTH> header;
  std::shared_ptr<aq::AQ_SpectralTimeHistory> history;
  if (historyFile.readFile(argv[1], header, history) != aq::AQ_DATA_OK) {
    std::cerr << historyFile.lastFailure()->message() << '\n';
    return 1;
  }
  words.takeInto(*history);
  aq::AQ_DataSSR ambientFile;
  std::shared_ptr<aq::AQ_Spectrum> ambient;
  if (ambientFile.readFile(argv[2], ambient) != aq::AQ_DATA_OK) {
    std::cerr << ambientFile.lastFailure()->message() << '\n';
    return 1;
  }
  std::cout << header->sProjectName << ": " << history->Count() << " records, "
            << history->spectrum(30)->SPL(28).toDouble() << " dB in band 28 of record 30\n";

  // Mask levels less than 3 dB above the ambient.
  const auto map = aq::maskByAmbient(*history, *ambient, 3);
  history->setLGB(*map);
  int masked = 0;
  for (const auto& [record, row] : *map) {
    for (const auto& [band, mask] : *row) {
      if (mask.MaskMode() != aq::NOT_MASKED) ++masked;
    }
  }
  std::cout << masked << " levels masked\nlast good band: " << map->Row(1)->LGB()
            << " in record 1, " << map->Row(30)->LGB() << " in record 30\n";

  // Compute the metrics of each record, and the event.
  const auto event = aq::setMetrics(*history, map.get());
  if (!event) return 1;
  const auto loudest = static_cast<std::size_t>(history->LoRec()) + event->maximum;
  std::cout << "EPNL " << event->epnl << " EPNdB, PNLTM " << event->pnltm << " TPNdB at record "
            << loudest << '\n';

  // Write both files, and read the history back.
  const auto mapHeader = std::make_shared<aq::AQ_HeaderMask>();
  mapHeader->sGeneratedBy = "tutorial";
  mapHeader->sGenerationFile = argv[3];
  mapHeader->cCommentLines->Add("Criterion: less than 3 dB above the ambient");
  aq::AQ_DataMask mapFile;
  if (historyFile.writeFile(argv[3], header, *history) != aq::AQ_DATA_OK) return 1;
  if (mapFile.writeFile(argv[4], mapHeader, *map) != aq::AQ_DATA_OK) return 1;
  std::shared_ptr<aq::AQ_SpectralTimeHistory> again;
  if (historyFile.readFile(argv[3], header, again) != aq::AQ_DATA_OK) return 1;
  int different = 0;
  for (const auto& [record, spectrum] : *history) {
    for (const auto& [band, level] : *spectrum) {
      if (again->spectrum(record)->SPL(band) != level) ++different;
    }
  }
  std::cout << "read back: " << again->Count() << " records, " << different
            << " levels are different\n";
}
