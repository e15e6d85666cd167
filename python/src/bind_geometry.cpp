#include "series.h"

namespace aq::python {
namespace {

AQ_Position& itself(AQ_Position& position) { return position; }
AQ_Position& atEmission(AQ_Geometry& point) { return *point.Pe(); }

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

auto positionsOf(const AQ_PositionTimeHistory& history) {
  std::vector<std::shared_ptr<AQ_Position>> all;
  for (const auto& [place, position] : history) all.push_back(position);
  return all;
}

Numbered<AQ_Geometry> pointsOf(const AQ_GeometryTimeHistory& history) {
  return numbered<AQ_Geometry>(history);
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
  bindSeries<H, AQ_Position>(history, "AQ_PositionTimeHistory", positionsOf, kPosition,
                             "CurrentDate, TODseconds (s), RelSeconds (s), X, Y and Z of each "
                             "sample as a table, shape (samples,)");
  bindPlaced<H, AQ_Position>(history, positionsOf, &H::Position, kPosition);
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
  bindSeries<H, G>(
      history, "AQ_GeometryTimeHistory", [](const H& self) { return pointsOf(self).objects; },
      kGeometry,
      "Times in s of day, propagation time in s, position, slant range and angles of "
      "each point as a table, shape (points,)");
  bindNumberedPoints(history);
}

}  // namespace

void bindGeometry(py::module_& module) {
  bindPositions(module);
  bindGeometryHistory(module);
  bindEmission(module);
}

}  // namespace aq::python
