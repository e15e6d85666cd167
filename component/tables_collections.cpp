#include "component/table_of.h"

namespace aq::com {

void addCollections(Tables& tables) {
  addTables(tables, describe::kCoreClasses);
  // Collections with other types of entries. Hosts see one class for all collections and can create
  // only collections of text.
  addTables<Collection<std::shared_ptr<Collection<std::string>>>, Collection<AQ_METRIC_TYPE>,
            Collection<double>, Collection<Message>, Collection<std::shared_ptr<ToneStep>>,
            Collection<std::shared_ptr<MetricDifference>>>(tables);
}

}  // namespace aq::com
