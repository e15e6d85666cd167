#include "component/table_of.h"

namespace aq::com {

void addCollections(Tables& tables) {
  addTables(tables, describe::kCoreClasses);
  // Of other entries: hosts know one class, of which they make those of text.
  addTables<Collection<std::shared_ptr<Collection<std::string>>>, Collection<AQ_METRIC_TYPE>,
            Collection<double>, Collection<Message>, Collection<std::shared_ptr<ToneStep>>,
            Collection<std::shared_ptr<MetricDifference>>>(tables);
}

}  // namespace aq::com
