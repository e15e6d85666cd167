#include "component/table_of.h"

namespace aq::com {

void addFiles(Tables& tables) { addTables(tables, describe::kFileClasses); }

}  // namespace aq::com
