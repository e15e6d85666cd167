#include "component/table_of.h"

namespace aq::com {

void addGeometry(Tables& tables) { addTables(tables, describe::kGeometryClasses); }

}  // namespace aq::com
