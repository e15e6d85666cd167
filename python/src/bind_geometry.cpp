#include <aq/describe/geometry.h>

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

/// Points are numbered by record: `records` gives the numbers, `from_numpy` takes them and pickles
/// keep them.
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
          R"(A new series from a table made by to_numpy, or a mapping of columns of shape (points,).

A missing column leaves zeros. Points are numbered from 1 unless distinct numbers are given.
Raises ValueError if no column has a known name, for an unknown name in a dictionary, for unequal
lengths and for times that are not finite; TypeError for columns that are not numbers.

>>> geometry = aq_data.AQ_GeometryTimeHistory.from_numpy({"Tm": times, "SRe": ranges})
)");
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
  Bound<AQ_Position>(module).record();

  using H = AQ_PositionTimeHistory;
  Bound<H> history(module);
  bindSeries<H, AQ_Position>(history, "AQ_PositionTimeHistory", positionsOf, kPosition,
                             "CurrentDate, TODseconds (s), RelSeconds (s), X, Y and Z of each "
                             "sample as a table, shape (samples,)");
  bindPlaced<H, AQ_Position>(history, positionsOf, &H::Position, kPosition);
}

void bindGeometryHistory(const py::module_& module) {
  using G = AQ_Geometry;
  Bound<G>(module).record();

  using H = AQ_GeometryTimeHistory;
  Bound<H> history(module);
  bindSeries<H, G>(
      history, "AQ_GeometryTimeHistory", [](const H& self) { return pointsOf(self).objects; },
      kGeometry,
      "Dates, times (s), propagation time, position, slant range, angles and debugTime of each "
      "point as a table, shape (points,)");
  bindNumberedPoints(history);
}

}  // namespace

void bindGeometry(py::module_& module) {
  bindPositions(module);
  bindGeometryHistory(module);
  bindEmission(module);
}

}  // namespace aq::python
