#include <aq/check/check_file.h>
#include <aq/check/same_levels.h>

#include "binding.h"

namespace aq::python {
namespace {

using Row = std::tuple<std::string, std::string, std::size_t, std::size_t,
                       std::optional<std::int32_t>, std::optional<std::int16_t>, std::string>;

Row rowOf(const Finding& finding) {
  const auto& [kind, place, message] = finding;
  return {std::string(severityText(kind.severity)),
          std::string(kind.name),
          place.line,
          place.field,
          place.record,
          place.band,
          message};
}

/// The findings that `check(sink)` reports, collected without the interpreter's lock.
template <class Check>
std::vector<Row> gathered(const Check& check) {
  std::vector<Row> rows;
  const py::gil_scoped_release released;
  check([&](const Finding& finding) { rows.push_back(rowOf(finding)); });
  return rows;
}

}  // namespace

void bindCheck(py::module_& module) {
  const auto ofOneFile = [&](const char* name, auto* check, const char* doc) {
    module.def(
        name,
        [check](const Path& path) {
          return gathered([&](const FindingSink& sink) { check(path.name, sink); });
        },
        py::arg("path"), doc);
  };
  ofOneFile(
      "checkFile", checkFile,
      "The findings about a file: severity, kind, line, field, record, band and message of each");
  ofOneFile(
      "checkWithHistory", checkWithHistory,
      "Like checkFile; also compares a file with the sources in its folder that its header names");
  module.def(
      "checkFit",
      [](const Path& history, const Path& map) {
        return gathered([&](const FindingSink& sink) { checkFit(history.name, map.name, sink); });
      },
      py::arg("history"), py::arg("map"),
      "Why a masking map does not fit the history that it was made for, as findings");
  module.def(
      "_checkFit",
      [](const AQ_SpectralTimeHistory& history, const std::string& name, const AQ_MaskMap& map) {
        return gathered([&](const FindingSink& sink) { checkFit(history, name, map, sink); });
      },
      py::arg("history"), py::arg("name"), py::arg("map"), "Like checkFit, for models");
  module.def(
      "_checkWithLevels",
      [](const Path& path) {
        Checked checked;
        auto rows =
            gathered([&](const FindingSink& sink) { checked = checkWithHistory(path.name, sink); });
        return std::pair(std::move(rows), checked.levels);
      },
      py::arg("path"), "The rows of checkWithHistory and, for a history, a digest of its levels");
  py::class_<SameLevels>(
      module, "SameLevels",
      "Finds files in an archive that have the same levels as a file seen earlier")
      .def(py::init<>())
      .def(
          "see",
          [](SameLevels& self, const Path& path, std::optional<std::uint64_t> levels) {
            return gathered([&](const FindingSink& sink) { self.see(path.name, {levels}, sink); });
          },
          py::arg("path"), py::arg("levels"),
          "The finding for a file whose level digest matches that of an earlier file");
  py::dict kinds;
  for (const FindingKind& kind : findingKinds()) {
    kinds[std::string(kind.name).c_str()] = std::string(kind.meaning);
  }
  module.attr("FINDING_KINDS") = kinds;
  module.def(
      "_doubtingKinds",
      [] {
        std::vector<std::string> names;
        for (const FindingKind& kind : findingKinds()) {
          if (kind.doubtsData()) names.emplace_back(kind.name);
        }
        return names;
      },
      "The kinds of findings that cast doubt on the data");
}

}  // namespace aq::python
