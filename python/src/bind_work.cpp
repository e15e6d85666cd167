#include <aq/check/mend_text.h>
#include <aq/geometry/cut_geometry.h>
#include <aq/masking/cut_map.h>
#include <aq/noise/record_geometry.h>
#include <aq/noise/records_down.h>
#include <aq/spectral/join_histories.h>

#include "binding.h"

namespace aq::python {
namespace {

using Range = std::pair<std::int16_t, std::int16_t>;

Range pairOf(const RecordRange& range) { return {range.first, range.last}; }

}  // namespace

void bindWork(py::module_& module) {
  module.def(
      "recordsBetween",
      [](const AQ_SpectralTimeHistory& history, double from, double to) {
        return pairOf(recordsBetween(history, from, to));
      },
      py::arg("history"), py::arg("from_"), py::arg("to"),
      "First and last record stamped within a range of times of day, in seconds");
  module.def(
      "recordsDown",
      [](const AQ_SpectralTimeHistory& history, const AQ_MaskMap* map, double decibels) {
        return pairOf(recordsDown(history, map, decibels));
      },
      py::arg("history"), py::arg("map") = py::none(), py::arg("decibels") = 10.0,
      "First and last record of the event: from the first to the last PNLT at most this many "
      "decibels below the largest, plus the record on each side, if there is one");
  module.def(
      "cutHistory",
      [](AQ_SpectralTimeHistory& history, std::int16_t first, std::int16_t last, bool fromOne) {
        return cutHistory(history, {first, last}, fromOne);
      },
      py::arg("history"), py::arg("first"), py::arg("last"), py::arg("fromOne") = false,
      "The records of a range, with their stamps; numbered from 1 if requested");
  module.def("cutMap", cutMap, py::arg("map"), py::arg("first"), py::arg("last"),
             "The rows of a range of records, numbered from 1");
  module.def("cutGeometry", cutGeometry, py::arg("geometry"), py::arg("first"), py::arg("last"),
             "The points of a range, numbered from 1");
  module.def(
      "geometryOf",
      [](AQ_GeometryTimeHistory& geometry, const AQ_SpectralTimeHistory& history,
         std::int16_t first, std::int16_t last) {
        return geometryOf(geometry, history, {first, last});
      },
      py::arg("geometry"), py::arg("history"), py::arg("first"), py::arg("last"),
      "The points of the records of a range, found by their times, numbered from 1");
  module.def(
      "joinGeometries", joinGeometries, py::arg("before"), py::arg("after"),
      "The points of two geometries; the numbering of the second continues that of the first");
  module.def("recordsMissing", recordsMissing, py::arg("before"), py::arg("after"),
             "How many records are missing between two pieces of a measurement");
  module.def("joinHistories", joinHistories, py::arg("before"), py::arg("after"),
             py::arg("fill") = false,
             "Joins two pieces of a measurement; fills a gap with records of 9999 if requested");
  module.def("joinMaps", joinMaps, py::arg("before"), py::arg("after"), py::arg("gap") = 0,
             "The rows of two maps, with unmasked rows for the gap in between");
  module.def(
      "_mendText",
      [](const py::bytes& bytes, const std::string& name, std::vector<std::string> done) {
        const Mended mended = mendText(static_cast<std::string_view>(bytes), name, std::move(done));
        return std::tuple(py::bytes(mended.text), mended.done, mended.left);
      },
      py::arg("bytes"), py::arg("name"), py::arg("done"),
      "The mended text, a list of what was mended, and a list of what was left alone");
}

}  // namespace aq::python
