// Writes one spectrum of a history as a spectrum record file:
//   one_spectrum HISTORY RECORD OUT
#include <cstdlib>

#include "examples/outcome.h"

int main(int argc, char** argv) {
  if (argc != 4) return 2;
  aq::AQ_DataSTH historyFile;
  std::shared_ptr<aq::AQ_HeaderSTH> header;
  std::shared_ptr<aq::AQ_SpectralTimeHistory> history;
  if (!isGood(historyFile.readFile(argv[1], header, history), historyFile)) return 1;
  const auto spectrum = history->spectrum(static_cast<std::int16_t>(std::atoi(argv[2])));
  const auto recordHeader = std::make_shared<aq::AQ_HeaderSSR>();
  recordHeader->cCommentLines->Add(header->sProjectName + " at " + spectrum->Time()->TODstring());
  aq::AQ_DataSSR recordFile;
  return isGood(recordFile.writeFile(argv[3], recordHeader, *spectrum), recordFile) ? 0 : 1;
}
