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
  Bound<R> record(module, "AQ_EmtRcvRecord",
                  "One pair of emission and reception: where the aircraft was when it emitted what "
                  "the microphone received later.");
  record.field("SR", &R::SR, "Slant range, in the unit of its positions")
      .field("Tprop", &R::Tprop, "Propagation time, s")
      .property("T", &R::T, &R::T, "The time of emission. Created on first read")
      .property("Tr", &R::Tr, &R::Tr, "The time of reception. Created on first read")
      .property("ACPosition", &R::ACPosition, &R::ACPosition,
                "Where the aircraft was. Created on first read");
  record.record();

  using T = AQ_EmtRcvTable;
  Bound<T> table(
      module, "AQ_EmtRcvTable",
      "A series of pairs of emission and reception, and its columns. Records are shared.");
  table
      .indexed("Record", &T::Record, &T::Record,
               "The record at a place from 1 on; storing appends, whatever the place")
      .property("T", &T::T, "Seconds of the day of emission, a new collection")
      .property("Tr", &T::Tr, "Seconds of the day of reception, a new collection")
      .property("X", &T::X, "The aircraft's first coordinate, a new collection")
      .property("Y", &T::Y, "The aircraft's second coordinate, a new collection")
      .property("Z", &T::Z, "The aircraft's height, a new collection")
      .property("Count", &T::Count, "The number of records");
  bindSeries<T, R>(table, "AQ_EmtRcvTable", recordsOf, kEmission,
                   "T and Tr in s of day, X, Y, Z, SR and Tprop in s of each record as a table, "
                   "shape (records,)");
  bindPlaced<T, R>(table, recordsOf, &T::Record, kEmission);
}

void bindPoints(const py::module_& module) {
  using M = AQ_Microphone;
  Bound<M> microphone(module, "AQ_Microphone",
                      "Where a microphone stands, in the unit of its file.");
  microphone.field("X", &M::X, "First coordinate")
      .field("Y", &M::Y, "Second coordinate")
      .field("Z", &M::Z, "Height of the ground")
      .field("Height", &M::Height, "Height above the ground at X, Y");
  microphone.record();

  using P = AQ_SPointTrk;
  Bound<P> point(module, "AQ_SPointTrk",
                 "Summary values of one point of a flight track. The times are None until set.");
  point.property("TOH", &P::TOH, &P::TOH, "Time overhead")
      .property("TMAX", &P::TMAX, &P::TMAX, "Time of the maximum")
      .property("T1", &P::T1, &P::T1, "First time")
      .property("T2", &P::T2, &P::T2, "Second time")
      .property("YOFF", &P::YOFF, &P::YOFF, "Lateral offset")
      .property("PHI", &P::PHI, &P::PHI, "Angle")
      .property("CYANG", &P::CYANG, &P::CYANG, "Angle")
      .property("ALT", &P::ALT, &P::ALT, "Altitude")
      .property("GSPDKTS", &P::GSPDKTS, &P::GSPDKTS, "Ground speed, knots")
      .property("FIRST", &P::FIRST, &P::FIRST, "First record")
      .property("LAST", &P::LAST, &P::LAST, "Last record")
      .property("MAX", &P::MAX, &P::MAX, "Record of the maximum");
  point.record();
}

}  // namespace

void bindEmission(const py::module_& module) {
  bindEmissionTable(module);
  bindPoints(module);
}

}  // namespace aq::python
