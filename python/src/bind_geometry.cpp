#include "arrays.h"

namespace aq::python {
namespace {

/// Column of a time: which of its values, of the object that `time` gives.
template <class Object, std::shared_ptr<AQ_Time> (Object::*Time)()>
constexpr Column<Object> todColumn(const char* name) {
  return {name, [](Object& o) { return (o.*Time)()->TODseconds(); },
          [](Object& o, double seconds) {
            (o.*Time)()->assignSeconds(seconds, (o.*Time)()->RelSeconds());
          }};
}

template <class Object, std::shared_ptr<AQ_Time> (Object::*Time)()>
constexpr Column<Object> relColumn(const char* name) {
  return {name, [](Object& o) { return (o.*Time)()->RelSeconds(); },
          [](Object& o, double seconds) {
            (o.*Time)()->assignSeconds((o.*Time)()->TODseconds(), seconds);
          }};
}

template <class Object, std::shared_ptr<AQ_Time> (Object::*Time)()>
constexpr Column<Object> dateColumn(const char* name) {
  return {name, [](Object& o) { return (o.*Time)()->CurrentDate(); },
          [](Object& o, double days) { (o.*Time)()->CurrentDate(days); }};
}

template <class Object, auto Member>
constexpr Column<Object> memberColumn(const char* name) {
  return {name, [](Object& o) { return static_cast<double>(o.*Member); },
          [](Object& o, double value) {
            o.*Member = static_cast<std::decay_t<decltype(o.*Member)>>(value);
          }};
}

/// One of the three coordinates of the position that `Get` finds in an object.
template <class Object, AQ_Position& (*Get)(Object&), double (AQ_Position::*Read)() const,
          void (AQ_Position::*Write)(double)>
constexpr Column<Object> coordinate(const char* name) {
  return {name, [](Object& o) { return (Get(o).*Read)(); },
          [](Object& o, double value) { (Get(o).*Write)(value); }};
}

AQ_Position& itself(AQ_Position& position) { return position; }
AQ_Position& atEmission(AQ_Geometry& point) { return *point.Pe(); }
AQ_Position& ofAircraft(AQ_EmtRcvRecord& record) { return *record.ACPosition(); }

constexpr Column<AQ_Position> kPosition[] = {
    dateColumn<AQ_Position, &AQ_Position::Time>("CurrentDate"),
    todColumn<AQ_Position, &AQ_Position::Time>("TODseconds"),
    relColumn<AQ_Position, &AQ_Position::Time>("RelSeconds"),
    coordinate<AQ_Position, itself, &AQ_Position::X, &AQ_Position::X>("X"),
    coordinate<AQ_Position, itself, &AQ_Position::Y, &AQ_Position::Y>("Y"),
    coordinate<AQ_Position, itself, &AQ_Position::Z, &AQ_Position::Z>("Z"),
};

constexpr Column<AQ_Geometry> kGeometry[] = {
    dateColumn<AQ_Geometry, &AQ_Geometry::Tm>("Tm_CurrentDate"),
    todColumn<AQ_Geometry, &AQ_Geometry::Tm>("Tm"),
    relColumn<AQ_Geometry, &AQ_Geometry::Tm>("Tm_RelSeconds"),
    dateColumn<AQ_Geometry, &AQ_Geometry::Te>("Te_CurrentDate"),
    todColumn<AQ_Geometry, &AQ_Geometry::Te>("Te"),
    relColumn<AQ_Geometry, &AQ_Geometry::Te>("Te_RelSeconds"),
    memberColumn<AQ_Geometry, &AQ_Geometry::Tprope>("Tprope"),
    coordinate<AQ_Geometry, atEmission, &AQ_Position::X, &AQ_Position::X>("Xe"),
    coordinate<AQ_Geometry, atEmission, &AQ_Position::Y, &AQ_Position::Y>("Ye"),
    coordinate<AQ_Geometry, atEmission, &AQ_Position::Z, &AQ_Position::Z>("Ze"),
    memberColumn<AQ_Geometry, &AQ_Geometry::SRe>("SRe"),
    memberColumn<AQ_Geometry, &AQ_Geometry::THETAe>("THETAe"),
    memberColumn<AQ_Geometry, &AQ_Geometry::BETAe>("BETAe"),
    memberColumn<AQ_Geometry, &AQ_Geometry::debugTime>("debugTime"),
};

constexpr Column<AQ_EmtRcvRecord> kEmission[] = {
    todColumn<AQ_EmtRcvRecord, &AQ_EmtRcvRecord::T>("T"),
    todColumn<AQ_EmtRcvRecord, &AQ_EmtRcvRecord::Tr>("Tr"),
    coordinate<AQ_EmtRcvRecord, ofAircraft, &AQ_Position::X, &AQ_Position::X>("X"),
    coordinate<AQ_EmtRcvRecord, ofAircraft, &AQ_Position::Y, &AQ_Position::Y>("Y"),
    coordinate<AQ_EmtRcvRecord, ofAircraft, &AQ_Position::Z, &AQ_Position::Z>("Z"),
    memberColumn<AQ_EmtRcvRecord, &AQ_EmtRcvRecord::SR>("SR"),
    memberColumn<AQ_EmtRcvRecord, &AQ_EmtRcvRecord::Tprop>("Tprop"),
};

// How each series gives all its objects, and takes the one of a number.

auto objectsOf(const AQ_PositionTimeHistory& history) {
  std::vector<std::shared_ptr<AQ_Position>> all;
  try {  // a history may hold more than `Count` can tell
    for (std::int32_t place = 1;; ++place) all.push_back(history.Position(place));
  } catch (const Error& end) {
    if (end.code() != ErrorCode::InvalidIndex) throw;
  }
  return all;
}

Numbered<AQ_Geometry> pointsOf(const AQ_GeometryTimeHistory& history) {
  return numbered<AQ_Geometry>(history.Count(),
                               [&](std::int16_t record) { return history.Point(record); });
}

auto objectsOf(const AQ_GeometryTimeHistory& history) { return pointsOf(history).objects; }

auto objectsOf(const AQ_EmtRcvTable& table) {
  std::vector<std::shared_ptr<AQ_EmtRcvRecord>> all;
  for (std::int32_t place = 1; place <= table.Count(); ++place) all.push_back(table.Record(place));
  return all;
}

/// What every series of objects has in Python: length, iteration, its table and repr.
template <class Series, class Object>
void bindSeries(Bound<Series>& series, const char* name, std::span<const Column<Object>> columns,
                const char* doc) {
  const auto size = [](const Series& self) { return objectsOf(self).size(); };
  series.def("__len__", size)
      .def("__iter__", [](const Series& self) { return py::iter(py::cast(objectsOf(self))); })
      .def(
          "to_numpy", [columns](const Series& self) { return tableOf(objectsOf(self), columns); },
          doc)
      .def("__repr__", [name, size](const Series& self) {
        return std::string("<") + name + ": " + std::to_string(size(self)) + " entries>";
      });
}

template <class Series, class Object>
using Put = void (Series::*)(std::int32_t, std::shared_ptr<Object>);

/// A series whose objects have places: it is made and unpickled in their order.
template <class Series, class Object>
void bindPlaced(Bound<Series>& series, Put<Series, Object> put,
                std::span<const Column<Object>> columns) {
  const auto fill = [put](Series& self, std::vector<std::shared_ptr<Object>> objects) {
    std::int32_t number = 0;
    for (auto& object : objects) (self.*put)(++number, std::move(object));
  };
  series.def_static(
      "from_numpy",
      [columns, fill](const py::object& given) {
        auto made = std::make_shared<Series>();
        fill(*made, objectsFrom(given, columns));
        return made;
      },
      py::arg("columns"),
      "A new series, numbered from 1, from a table or any mapping of columns as to_numpy names "
      "them; a column that is not there leaves zeros");
  series.container([](const Series& self) { return objectsOf(self); },
                   [fill](Series& self, const py::handle& kept) {
                     fill(self, kept.cast<std::vector<std::shared_ptr<Object>>>());
                   });
}

using Points = std::vector<std::shared_ptr<AQ_Geometry>>;

void putPoints(AQ_GeometryTimeHistory& history, const std::vector<std::int16_t>& records,
               const Points& points) {
  for (std::size_t i = 0; i < records.size(); ++i) history.Point(records[i], points.at(i));
}

/// Points go by record number, which arrays and pickles keep.
void bindNumberedPoints(Bound<AQ_GeometryTimeHistory>& history) {
  using H = AQ_GeometryTimeHistory;
  history
      .def_property_readonly(
          "records", [](const H& self) { return numberArray(pointsOf(self).numbers); },
          "The record numbers, ascending, shape (points,)")
      .def_static(
          "from_numpy",
          [](const py::object& given, const py::object& records) {
            const Points points = objectsFrom<AQ_Geometry>(given, kGeometry);
            const auto made = std::make_shared<H>();
            putPoints(*made, recordNumbers(records, std::ssize(points)), points);
            return made;
          },
          py::arg("columns"), py::arg("records") = py::none(),
          "A new series from a table or any mapping of columns as to_numpy names them; a column "
          "that is not there leaves zeros. Points are numbered from 1 unless their numbers are "
          "given");
  history.container(
      [](const H& self) {
        const auto points = pointsOf(self);
        return py::make_tuple(points.numbers, points.objects);
      },
      [](H& self, const py::handle& kept) {
        putPoints(self, kept[py::int_(0)].cast<std::vector<std::int16_t>>(),
                  kept[py::int_(1)].cast<Points>());
      });
}

void bindPositions(const py::module_& module) {
  Bound<AQ_Position> position(
      module, "AQ_Position",
      "One sample of a source's position: a time of day and three Cartesian "
      "coordinates, in the unit of the file that held them.");
  position
      .property("Time", &AQ_Position::Time, &AQ_Position::Time,
                "The time of day. Created on first read; setting shares the object")
      .property("X", &AQ_Position::X, &AQ_Position::X, "First coordinate, in the file's unit")
      .property("Y", &AQ_Position::Y, &AQ_Position::Y, "Second coordinate, in the file's unit")
      .property("Z", &AQ_Position::Z, &AQ_Position::Z, "The height, in the file's unit")
      .def("Copy", &AQ_Position::Copy, "A deep copy");
  position.record();

  using H = AQ_PositionTimeHistory;
  Bound<H> history(module, "AQ_PositionTimeHistory",
                   "The ordered series of a source's positions, shared, not copied.");
  history
      .indexed("Position", &H::Position, &H::Position,
               "The sample at a place from 1 on; storing goes by record number")
      .property("Count", &H::Count, "The number of samples; above 32767 it raises")
      .def("PositionAt", &H::PositionAt, py::arg("aqTime"),
           "The stored sample nearest in time of day, None when no two samples enclose it")
      .def("GoodTime", &H::GoodTime, py::arg("aqTime"),
           "Whether a time of day lies between those of the first and the last sample")
      .def("Copy", &H::Copy, "A deep copy, numbered from 1");
  bindSeries<H, AQ_Position>(history, "AQ_PositionTimeHistory", kPosition,
                             "CurrentDate, TODseconds (s), RelSeconds (s), X, Y and Z of each "
                             "sample as a table, shape (samples,)");
  bindPlaced<H, AQ_Position>(history, &H::Position, kPosition);
}

void bindGeometryHistory(const py::module_& module) {
  using G = AQ_Geometry;
  Bound<G> point(module, "AQ_Geometry",
                 "The emission geometry of one measured record: when its sound was emitted, where "
                 "the source was then, and how the sound came to the microphone.");
  point.field("SRe", &G::SRe, "Slant range at emission, in the file's unit")
      .field("THETAe", &G::THETAe, "First emission angle, degrees")
      .field("BETAe", &G::BETAe, "Second emission angle, degrees")
      .field("Tprope", &G::Tprope, "Propagation time from emission to measurement, s")
      .field("debugTime", &G::debugTime, "Free, for diagnostics; written and not read back")
      .property("Pe", &G::Pe, &G::Pe, "The source's position at emission. Created on first read")
      .property("Te", &G::Te, &G::Te, "The time of emission. Created on first read")
      .property("Tm", &G::Tm, &G::Tm, "The record's time at the microphone. Created on first read")
      .def("Copy", &G::Copy, "A deep copy, without debugTime");
  point.record();

  using H = AQ_GeometryTimeHistory;
  Bound<H> history(module, "AQ_GeometryTimeHistory",
                   "The emission geometry of the records of a measurement, by record number. "
                   "Points are shared, not copied.");
  history.indexed("Point", &H::Point, &H::Point, "The point under a record number")
      .property("Count", &H::Count, "The number of points")
      .property("ReferenceType", &H::ReferenceType, &H::ReferenceType,
                "Which event the reference time marks")
      .property("TimeStampType", &H::TimeStampType, &H::TimeStampType,
                "Which instant of a record its time stamp names")
      .property("startTime", &H::startTime, &H::startTime,
                "The time of the first record. Created on first read")
      .property("ReferenceTime", &H::ReferenceTime, &H::ReferenceTime,
                "The reference time. Created on first read")
      .def("setTimeStamps", &H::setTimeStamps, py::arg("startTime"), py::arg("StartTimeType"),
           py::arg("RefTime"), py::arg("RefType"), "Stamps Tm of every point, half a second each")
      .def("setRelTimes", &H::setRelTimes, py::arg("ReferenceTime"), py::arg("RefType"),
           "Shares the reference time; with any points it raises, setTimeStamps relates them")
      .def("Copy", &H::Copy, "A deep copy of points 1 to Count, and of nothing else");
  bindSeries<H, G>(history, "AQ_GeometryTimeHistory", kGeometry,
                   "Times in s of day, propagation time in s, position, slant range and angles of "
                   "each point as a table, shape (points,)");
  bindNumberedPoints(history);
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
  bindSeries<T, R>(table, "AQ_EmtRcvTable", kEmission,
                   "T and Tr in s of day, X, Y, Z, SR and Tprop in s of each record as a table, "
                   "shape (records,)");
  bindPlaced<T, R>(table, &T::Record, kEmission);
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

void bindGeometry(py::module_& module) {
  bindPositions(module);
  bindGeometryHistory(module);
  bindEmissionTable(module);
  bindPoints(module);
}

}  // namespace aq::python
