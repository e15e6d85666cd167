#include "component/table_of.h"

namespace aq::com {

void addNoise(Tables& tables) {
  addTables(tables, describe::kNoiseClasses);
  addTables<Library>(tables);
}

}  // namespace aq::com
