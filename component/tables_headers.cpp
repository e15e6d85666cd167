#include "component/table_of.h"

namespace aq::com {

void addHeaders(Tables& tables) { addTables(tables, describe::kHeaders); }

}  // namespace aq::com
