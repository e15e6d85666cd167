// Reads analysis parameters, changes some and writes them:
//   parameters IN OUT
#include "examples/outcome.h"

int main(int argc, char** argv) {
  if (argc != 3) return 2;
  aq::AQ_DataINI parameters;
  if (!isGood(parameters.readFile(argv[1]), parameters)) return 1;
  std::cout << "records " << parameters.LoRec() << " to " << parameters.HiRec() << '\n';
  parameters.NuAvg(aq::AQ_4S100);
  parameters.PoWndo(12.5F);
  parameters.Comments()->Add("Widened the window after the event");
  return isGood(parameters.writeFile(argv[2]), parameters) ? 0 : 1;
}
