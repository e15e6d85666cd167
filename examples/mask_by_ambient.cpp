// Makes a masking map in which levels less than a margin above the ambient are masked:
//   mask_by_ambient HISTORY AMBIENT MARGIN OUT
#include <cstdlib>

#include "examples/outcome.h"

int main(int argc, char** argv) {
  if (argc != 5) return 2;
  aq::AQ_DataSTH historyFile;
  std::shared_ptr<aq::AQ_HeaderSTH> header;
  std::shared_ptr<aq::AQ_SpectralTimeHistory> history;
  if (!isGood(historyFile.readFile(argv[1], header, history), historyFile)) return 1;
  aq::AQ_DataSSR ambientFile;
  std::shared_ptr<aq::AQ_Spectrum> ambient;
  if (!isGood(ambientFile.readFile(argv[2], ambient), ambientFile)) return 1;

  const auto map = aq::maskByAmbient(*history, *ambient, std::atof(argv[3]));
  const auto mapHeader = std::make_shared<aq::AQ_HeaderMask>();
  mapHeader->sGeneratedBy = "mask_by_ambient";
  mapHeader->sGenerationFile = argv[1];
  aq::AQ_DataMask mapFile;
  return isGood(mapFile.writeFile(argv[4], mapHeader, *map), mapFile) ? 0 : 1;
}
