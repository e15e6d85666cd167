#include "levels.h"

namespace aq::python {
namespace {

/// What a level was: a pickle keeps its type, which the written file may show.
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
  Bound<AQ_Spectrum> spectrum(
      module, "AQ_Spectrum",
      "One measured one-third-octave spectrum: a level for each band that has one, in dB, the time "
      "of the measurement, an overall level and the metrics. Band n is centred at 10^(n/10) Hz; "
      "9999 is a level that is not valid.");
  spectrum
      .indexed("SPL", &AQ_Spectrum::SPL, &AQ_Spectrum::SPL,
               "The level of a band, normally in dB; a band without one raises")
      .property("LowBand", &AQ_Spectrum::LowBand, "The lowest band ever stored; 9999 when none was")
      .property("HighBand", &AQ_Spectrum::HighBand,
                "The highest band ever stored; -1 when none was")
      .property("Level", &AQ_Spectrum::Level, &AQ_Spectrum::Level, "An overall level, dB")
      .property("Time", &AQ_Spectrum::Time, &AQ_Spectrum::Time,
                "When it was measured. Created on first read; setting shares the object")
      .property("Metric", &AQ_Spectrum::Metric, &AQ_Spectrum::Metric,
                "The metrics. Created on first read; setting shares the object");
  spectrum.def("Copy", &AQ_Spectrum::Copy, "A deep copy; a band without a level raises")
      .def(
          "Encompasses",
          [](const AQ_Spectrum& self, const py::object& other) {
            return self.Encompasses(Banded(other));
          },
          py::arg("spectrum"),
          "Whether the bands of an object with LowBand and HighBand lie inside this one's")
      .def(
          "to_numpy",
          [](const AQ_Spectrum& self) {
            Levels levels(countOf({self.LowBand(), self.HighBand()}));
            takeLevels(self, self.LowBand(),
                       {levels.mutable_data(), static_cast<std::size_t>(levels.size())});
            return levels;
          },
          "The levels from LowBand to HighBand, shape (bands,), NaN where there is none")
      .def_static(
          "from_numpy",
          [](const py::object& given, std::int16_t lowBand) {
            const auto levels = numbersFrom<double>(given, 1, "numbers in one dimension, (bands)");
            checkBands(lowBand, levels.size());
            return spectrumFrom({levels.data(), static_cast<std::size_t>(levels.size())}, lowBand);
          },
          py::arg("levels"), py::arg("low_band") = 17,
          "A new spectrum from levels in dB, shape (bands,); NaN stores no level")
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
  Bound<AQ_Metric> metric(module, "AQ_Metric",
                          "The noise metrics computed for one spectrum, in dB. One that was never "
                          "set reads as 0.");
  metric.property("AWT", &AQ_Metric::AWT, &AQ_Metric::AWT, "A-weighted level, dB")
      .property("CWT", &AQ_Metric::CWT, &AQ_Metric::CWT, "C-weighted level, dB")
      .property("DWT", &AQ_Metric::DWT, &AQ_Metric::DWT, "D-weighted level, dB")
      .property("OA", &AQ_Metric::OA, &AQ_Metric::OA, "Overall level, dB")
      .property("PNL", &AQ_Metric::PNL, &AQ_Metric::PNL, "Perceived noise level, PNdB")
      .property("PNLT", &AQ_Metric::PNLT, &AQ_Metric::PNLT,
                "Tone-corrected perceived noise level, TPNdB")
      .property("TONECOR", &AQ_Metric::TONECOR, &AQ_Metric::TONECOR, "Tone correction, dB")
      .property("TONEBND", &AQ_Metric::TONEBND, &AQ_Metric::TONEBND,
                "The band that caused the tone correction")
      .property("LGB", &AQ_Metric::LGB, &AQ_Metric::LGB, "The last good band")
      .property("INTEG", &AQ_Metric::INTEG, &AQ_Metric::INTEG,
                "The part that the record plays in the integration");
  metric
      .view<AQ_METRIC_TYPE, Variant>(
          "MetricValue",
          [](const AQ_Metric& self, AQ_METRIC_TYPE type) { return self.MetricValue(type); },
          [](AQ_Metric& self, AQ_METRIC_TYPE type, const Variant& value) {
            self.MetricValue(type, value);
          },
          "Any metric by its type")
      .def("Copy", &AQ_Metric::Copy, "A new metric with the same values");
  metric.record();

  Bound<AQ_MetricSummary> summary(module, "AQ_MetricSummary",
                                  "Which metrics a spectral time history carries, in order.");
  summary.property("MetricTypes", &AQ_MetricSummary::MetricTypes,
                   "The summary's own list, not a copy");
  summary
      .def_property(
          "MetricTypeString", [](const AQ_MetricSummary& self) { return self.MetricTypeString(); },
          [](AQ_MetricSummary& self, const std::string& name) { self.MetricTypeString(name); },
          "The list as text, AWT, PNLT; setting adds the one metric of that name")
      .def("MetricType", &AQ_MetricSummary::MetricType, py::arg("aqMetric"),
           "Adds a metric; one that is listed moves to the end")
      .def("isMetric", &AQ_MetricSummary::isMetric, py::arg("aqMetric"),
           "Whether a metric is listed")
      .def("Copy", &AQ_MetricSummary::Copy, "A new summary with the same list")
      .def("__repr__", [](const AQ_MetricSummary& self) {
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
  Bound<AQ_Band> band(module, "AQ_Band",
                      "The levels of one band across a series of spectra, by spectrum number.");
  band.indexed("SPL", &AQ_Band::SPL, &AQ_Band::SPL, "The level of a spectrum number, dB")
      .property("Count", &AQ_Band::Count, "How many levels are stored")
      .def("Copy", &AQ_Band::Copy, "None for an empty band; any other raises")
      .def("__len__", &AQ_Band::Count)
      .def("__repr__", [](const AQ_Band& self) {
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
