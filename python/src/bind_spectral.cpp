#include <aq/describe/spectral.h>

#include "levels.h"

namespace aq::python {
namespace {

/// The levels for a pickle, with the type of each, which can affect how the level is written to a
/// file.
py::tuple savedLevels(const AQ_Spectrum& spectrum) {
  if (const auto plain = spectrum.plainLevels(); !plain.empty()) {
    return py::make_tuple(spectrum.LowBand(), py::bytes(reinterpret_cast<const char*>(plain.data()),
                                                        plain.size() * sizeof(double)));
  }
  py::list levels;
  for (const auto& [band, level] : spectrum) {
    levels.append(py::make_tuple(band, level, level.type() == Variant::Type::Single));
  }
  return py::make_tuple(py::none(), levels);
}

void loadLevels(AQ_Spectrum& spectrum, const py::tuple& kept) {
  if (!kept[0].is_none()) {
    const auto bytes = kept[1].cast<py::bytes>();
    const std::string_view raw = bytes;
    std::vector<double> levels(raw.size() / sizeof(double));
    std::copy(raw.begin(), raw.end(), reinterpret_cast<char*>(levels.data()));
    spectrum.assignLevels(kept[0].cast<std::int16_t>(), levels);
    return;
  }
  for (const py::handle item : kept[1]) {
    const auto level = item.cast<py::tuple>();
    const auto value = level[1].cast<Variant>();
    spectrum.SPL(level[0].cast<std::int16_t>(), level[2].cast<bool>() ? value.toSingle() : value);
  }
}

void bindSpectrum(const py::module_& module) {
  Bound<AQ_Spectrum> spectrum(module);
  spectrum
      .def(
          "to_numpy",
          [](const AQ_Spectrum& self) {
            Levels levels(countOf({self.LowBand(), self.HighBand()}));
            takeLevels(self, self.LowBand(),
                       {levels.mutable_data(), static_cast<std::size_t>(levels.size())});
            return levels;
          },
          "The levels from LowBand to HighBand, shape (bands,), NaN for a missing level")
      .def_static(
          "from_numpy",
          [](const py::object& given, std::int16_t lowBand) {
            const auto levels = numbersFrom<double>(given, 1, "numbers in one dimension, (bands)");
            checkBands(lowBand, levels.size());
            return spectrumFrom({levels.data(), static_cast<std::size_t>(levels.size())}, lowBand);
          },
          py::arg("levels"), py::arg("low_band") = 17,
          R"(A new spectrum from levels in dB, shape (bands,), the first band being low_band.

NaN stores no level. Raises ValueError for another shape and for numbers that no band can have.

>>> spectrum = aq_data.AQ_Spectrum.from_numpy([61.5, 60.2, 58.9], low_band=24)
)")
      .def_property_readonly(
          "bands",
          [](const AQ_Spectrum& self) {
            return numberArray(numbersOf({self.LowBand(), self.HighBand()}));
          },
          "The band numbers from LowBand to HighBand, shape (bands,)")
      .def("__repr__", [](const AQ_Spectrum& self) {
        return "<AQ_Spectrum: " + bandsText({self.LowBand(), self.HighBand()}) + ">";
      });
  spectrum.container(savedLevels, loadLevels);
}

void bindMetrics(const py::module_& module) {
  Bound<AQ_Metric>(module).record();

  Bound<AQ_MetricSummary> summary(module);
  summary.def("__repr__", [](const AQ_MetricSummary& self) {
    return "<AQ_MetricSummary: " + self.MetricTypeString() + ">";
  });
  summary.container([](const AQ_MetricSummary& self) { return self.MetricTypes(); },
                    [](AQ_MetricSummary& self, const py::handle& kept) {
                      for (const py::handle type : kept) {
                        self.MetricType(type.cast<AQ_METRIC_TYPE>());
                      }
                    });
}

void bindBand(const py::module_& module) {
  Bound<AQ_Band> band(module);
  band.def("__len__", &AQ_Band::Count).def("__repr__", [](const AQ_Band& self) {
    return "<AQ_Band: " + std::to_string(self.Count()) + " levels>";
  });
  band.container(
      [](const AQ_Band& self) {
        py::list kept;
        for (const auto& [record, level] : self) kept.append(py::make_tuple(record, level));
        return kept;
      },
      [](AQ_Band& self, const py::handle& kept) {
        for (const py::handle item : kept) {
          const auto level = item.cast<py::tuple>();
          self.SPL(level[0].cast<Variant>(), level[1].cast<Variant>());
        }
      });
}

}  // namespace

void bindSpectral(py::module_& module) {
  bindMetrics(module);
  bindSpectrum(module);
  bindBand(module);
  bindHistory(module);
}

}  // namespace aq::python
