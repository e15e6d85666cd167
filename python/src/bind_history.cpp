#include <aq/describe/spectral.h>

#include "levels.h"
#include "tables.h"

namespace aq::python {
namespace {

Numbered<AQ_Spectrum> spectraOf(const AQ_SpectralTimeHistory& history) {
  return numbered<AQ_Spectrum>(history);
}

void blankMasked(AQ_MaskRow& row, std::int16_t low, std::span<double> cells) {
  for (const std::int16_t band : numbersOf({row.LowBand(), row.HighBand()})) {
    const int cell = band - low;
    if (cell < 0 || cell >= std::ssize(cells)) continue;
    if (row.decision(band).MaskMode() != NOT_MASKED)
      cells[static_cast<std::size_t>(cell)] = kMissing;
  }
}

/// The lowest and highest band of all records. Throws if a record has no spectrum.
NumberRange bandsOfAll(const AQ_SpectralTimeHistory& history) {
  NumberRange bands;
  for (const auto& [record, spectrum] : history) {
    if (!spectrum) failNumber(ErrorCode::ObjectNotSet, record, " is None");
    if (spectrum->HighBand() < spectrum->LowBand()) continue;
    bands.widen(spectrum->LowBand());
    bands.widen(spectrum->HighBand());
  }
  return bands;
}

Levels levelsOf(const AQ_SpectralTimeHistory& history, const AQ_MaskMap* mask) {
  const NumberRange bands = bandsOfAll(history);
  const auto width = static_cast<std::size_t>(countOf(bands));
  Levels levels({std::distance(history.begin(), history.end()), countOf(bands)});
  double* line = levels.mutable_data();
  for (const auto& [record, spectrum] : history) {
    const std::span<double> cells(line, width);
    at("record", record, [&, &held = *spectrum] { takeLevels(held, bands.low, cells); });
    line += width;
    if (mask == nullptr) continue;
    if (!mask->contains(record) || !mask->heldRow(record)) {
      throw py::value_error("the map has no row for record " + std::to_string(record));
    }
    blankMasked(*mask->heldRow(record), bands.low, cells);
  }
  return levels;
}

std::shared_ptr<AQ_SpectralTimeHistory> historyFrom(const py::object& given, std::int16_t lowBand,
                                                    const py::object& records) {
  const auto levels = numbersFrom<double>(given, 2, "numbers in two dimensions, (records, bands)");
  checkBands(lowBand, levels.shape(1));
  const auto width = static_cast<std::size_t>(levels.shape(1));
  auto history = std::make_shared<AQ_SpectralTimeHistory>();
  const double* line = levels.data();
  for (const std::int16_t record : recordNumbers(records, levels.shape(0))) {
    history->spectrum(record, spectrumFrom({line, width}, lowBand));
    line += width;
  }
  return history;
}

constexpr Column<AQ_Spectrum> kTimes[] = {
    {"CurrentDate", [](AQ_Spectrum& s) { return s.timeValue().CurrentDate(); },
     [](AQ_Spectrum& s, double days) { s.Time()->CurrentDate(days); }, kFinite},
    {"TODseconds", [](AQ_Spectrum& s) { return s.timeValue().TODseconds(); },
     [](AQ_Spectrum& s, double seconds) {
       s.Time()->assignSeconds(seconds, s.Time()->RelSeconds());
     },
     kFinite},
    {"RelSeconds", [](AQ_Spectrum& s) { return s.timeValue().RelSeconds(); },
     [](AQ_Spectrum& s, double seconds) {
       s.Time()->assignSeconds(s.Time()->TODseconds(), seconds);
     },
     kFinite},
};

template <AQ_METRIC_TYPE Type>
constexpr Column<AQ_Spectrum> metric(const char* name, Cells cells) {
  return {name, [](AQ_Spectrum& s) { return s.Metric()->MetricValue(Type).toDouble(); },
          [](AQ_Spectrum& s, double value) { s.Metric()->MetricValue(Type, value); }, cells};
}

constexpr Column<AQ_Spectrum> kMetrics[] = {
    metric<AQ_METRIC_AWT>("AWT", kAnyNumber),
    metric<AQ_METRIC_CWT>("CWT", kSingle),
    metric<AQ_METRIC_DWT>("DWT", kSingle),
    metric<AQ_METRIC_OA>("OA", kSingle),
    metric<AQ_METRIC_PNL>("PNL", kSingle),
    metric<AQ_METRIC_PNLT>("PNLT", kSingle),
    metric<AQ_METRIC_TONECOR>("TONECOR", kSingle),
    metric<AQ_METRIC_TONEBND>("TONEBND", kWhole<std::int16_t>),
    metric<AQ_METRIC_LGB>("LGB", kWhole<std::int16_t>),
    metric<AQ_METRIC_INTEG>("INTEG", kWhole<std::int32_t>),
    {"Level", [](AQ_Spectrum& s) { return s.Level(); },
     [](AQ_Spectrum& s, double level) { s.Level(level); }},
};

void bindColumns(py::class_<AQ_SpectralTimeHistory, std::shared_ptr<AQ_SpectralTimeHistory>>& bound,
                 const char* name, std::span<const Column<AQ_Spectrum>> columns, const char* doc) {
  bound.def_property(
      name,
      [columns](const AQ_SpectralTimeHistory& self) {
        return tableOf(spectraOf(self).objects, columns);
      },
      [columns](const AQ_SpectralTimeHistory& self, const py::object& given) {
        const auto spectra = spectraOf(self);
        TableSource(given, columns).fill(spectra.objects, columns, spectra.numbers);
      },
      doc);
}

std::string describe(AQ_SpectralTimeHistory& history) {
  return "<AQ_SpectralTimeHistory: " + std::to_string(history.Count()) + " records, " +
         history.sAveragingMethod() + ", stamped " + history.sTimeStampType() + ">";
}

using BoundHistory = Bound<AQ_SpectralTimeHistory>;

void bindSequence(BoundHistory& history) {
  using H = AQ_SpectralTimeHistory;
  history.def("__len__", &H::Count)
      .def("__iter__", [](const H& self) { return py::iter(py::cast(spectraOf(self).objects)); })
      .def("__repr__", describe);
}

void bindArrays(BoundHistory& history) {
  using H = AQ_SpectralTimeHistory;
  history
      .def_property_readonly(
          "records", [](const H& self) { return numberArray(spectraOf(self).numbers); },
          "The record numbers, ascending, shape (records,)")
      .def_property_readonly(
          "bands", [](const H& self) { return numberArray(numbersOf(bandsOfAll(self))); },
          "The band numbers, from the lowest to the highest in any record, shape (bands,)")
      .def("to_numpy", levelsOf, py::arg("mask") = py::none(),
           "The levels in dB, shape (records, bands), NaN for a missing level and, with a "
           "map, for a masked one")
      .def_static(
          "from_numpy", historyFrom, py::arg("levels"), py::arg("low_band") = 17,
          py::arg("records") = py::none(),
          R"(A new history from levels in dB, shape (records, bands), the first band being low_band.

NaN stores no level. Records are numbered from 1 unless distinct numbers are given. Raises
ValueError for another shape and for numbers that no record or band can have.

>>> history = aq_data.AQ_SpectralTimeHistory.from_numpy(levels, low_band=17)
)");
  bindColumns(history, "times", kTimes,
              "CurrentDate, TODseconds and RelSeconds of each record as a table, shape (records,)");
  bindColumns(history, "metrics", kMetrics,
              "The metrics and Level of each record as a table, shape (records,)");
}

}  // namespace

void bindHistory(const py::module_& module) {
  BoundHistory history(module);
  bindSequence(history);
  bindArrays(history);
  history.container(
      [](const AQ_SpectralTimeHistory& self) {
        const auto spectra = spectraOf(self);
        return py::make_tuple(spectra.numbers, spectra.objects);
      },
      [](AQ_SpectralTimeHistory& self, const py::handle& kept) {
        const auto numbers = kept[py::int_(0)].cast<std::vector<std::int16_t>>();
        const auto spectra = kept[py::int_(1)].cast<std::vector<std::shared_ptr<AQ_Spectrum>>>();
        for (std::size_t i = 0; i < numbers.size(); ++i) self.spectrum(numbers[i], spectra.at(i));
      });
}

}  // namespace aq::python
