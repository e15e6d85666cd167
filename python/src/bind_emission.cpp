#include <aq/describe/geometry.h>

#include "series.h"

namespace aq::python {
namespace {

AQ_Position& ofAircraft(AQ_EmtRcvRecord& record) { return *record.ACPosition(); }

constexpr Column<AQ_EmtRcvRecord> kEmission[] = {
    todColumn<AQ_EmtRcvRecord, &AQ_EmtRcvRecord::T>("T"),
    todColumn<AQ_EmtRcvRecord, &AQ_EmtRcvRecord::Tr>("Tr"),
    coordinate<AQ_EmtRcvRecord, ofAircraft, &AQ_Position::X, &AQ_Position::X>("X"),
    coordinate<AQ_EmtRcvRecord, ofAircraft, &AQ_Position::Y, &AQ_Position::Y>("Y"),
    coordinate<AQ_EmtRcvRecord, ofAircraft, &AQ_Position::Z, &AQ_Position::Z>("Z"),
    memberColumn<AQ_EmtRcvRecord, &AQ_EmtRcvRecord::SR>("SR"),
    memberColumn<AQ_EmtRcvRecord, &AQ_EmtRcvRecord::Tprop>("Tprop"),
};

auto recordsOf(const AQ_EmtRcvTable& table) {
  std::vector<std::shared_ptr<AQ_EmtRcvRecord>> all;
  for (std::int32_t place = 1; place <= table.Count(); ++place) all.push_back(table.Record(place));
  return all;
}

void bindEmissionTable(const py::module_& module) {
  using R = AQ_EmtRcvRecord;
  Bound<R>(module).record();

  using T = AQ_EmtRcvTable;
  Bound<T> table(module);
  bindSeries<T, R>(
      table, "AQ_EmtRcvTable", recordsOf, kEmission,
      "A table with T and Tr (seconds since midnight), X, Y, Z, SR and Tprop of each record, shape "
      "(records,)");
  bindPlaced<T, R>(table, recordsOf, &T::Record, kEmission);
}

}  // namespace

void bindEmission(const py::module_& module) {
  bindEmissionTable(module);
  Bound<AQ_Microphone>(module).record();
  Bound<AQ_SPointTrk>(module).record();
}

}  // namespace aq::python
