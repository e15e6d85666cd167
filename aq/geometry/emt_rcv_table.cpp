#include "aq/geometry/emt_rcv_table.h"

#include "aq/detail/number_range.h"
#include "aq/detail/pointers.h"

namespace aq {

template <class Value>
AQ_EmtRcvTable::Column AQ_EmtRcvTable::column(const Value& value) const {
  auto values = std::make_shared<Collection<double>>();
  values->reserve(static_cast<std::size_t>(Count()));
  for (const auto& record : records_) values->Add(value(orThrow(record)));
  return values;
}

AQ_EmtRcvTable::Column AQ_EmtRcvTable::T() const {
  return column([](AQ_EmtRcvRecord& record) { return record.T()->TODseconds(); });
}

AQ_EmtRcvTable::Column AQ_EmtRcvTable::Tr() const {
  return column([](AQ_EmtRcvRecord& record) { return record.Tr()->TODseconds(); });
}

AQ_EmtRcvTable::Column AQ_EmtRcvTable::X() const {
  return column([](AQ_EmtRcvRecord& record) { return record.ACPosition()->X(); });
}

AQ_EmtRcvTable::Column AQ_EmtRcvTable::Y() const {
  return column([](AQ_EmtRcvRecord& record) { return record.ACPosition()->Y(); });
}

AQ_EmtRcvTable::Column AQ_EmtRcvTable::Z() const {
  return column([](AQ_EmtRcvRecord& record) { return record.ACPosition()->Z(); });
}

std::int16_t AQ_EmtRcvTable::Count() const {
  return count16(static_cast<std::size_t>(records_.Count()));
}

}  // namespace aq
