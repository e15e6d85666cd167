#include "component/table_of.h"

namespace aq::com {

void addModels(Tables& tables) {
  addTables(tables, describe::kSpectralClasses);
  addTables(tables, describe::kMaskingClasses);
}

}  // namespace aq::com
