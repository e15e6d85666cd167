#include <aq/noise/audit_metrics.h>
#include <aq/noise/emission_geometry.h>
#include <aq/noise/history_metrics.h>
#include <aq/noise/perceived_noise_level.h>
#include <aq/noise/set_metrics.h>
#include <aq/noise/tone_correction.h>
#include <aq/noise/weighted_level.h>
#include <aq/spectral/ambient_masking.h>

#include <optional>
#include <tuple>

#include "arrays.h"

namespace aq::python {
namespace {

struct ToneRow {
  double correction;
  std::int16_t band;
  std::int16_t last_band;
};

struct StepRow {
  std::int16_t band;
  double level, slope;
  bool slope_marked, level_marked;
  double adjusted, adjusted_slope, mean_slope, background, difference, correction;
};

constexpr double kNone = std::numeric_limits<double>::quiet_NaN();

py::array_t<StepRow> stepsOf(const AQ_Spectrum& spectrum, const AQ_MaskRow* masks) {
  const ToneCorrection tone = toneCorrection(spectrum, masks);
  py::array_t<StepRow> rows(std::ssize(tone.rows));
  StepRow* row = rows.mutable_data();
  for (const ToneStep& step : tone.rows) {
    *row++ = {step.band,
              step.level,
              step.slope.value_or(kNone),
              step.slopeMarked,
              step.levelMarked,
              step.adjusted.value_or(kNone),
              step.adjustedSlope.value_or(kNone),
              step.meanSlope.value_or(kNone),
              step.background.value_or(kNone),
              step.difference.value_or(kNone),
              step.correction.value_or(kNone)};
  }
  return rows;
}

constexpr std::int16_t kFirstBand = 17;
constexpr py::ssize_t kBands = 24;

/// The tone correction of each row, which has the levels of bands 17 to 40.
py::array_t<ToneRow> toneCorrections(const py::object& given) {
  const auto levels =
      numbersFrom<double>(given, 2, "levels of bands 17 to 40, with the shape (records, 24)");
  if (levels.shape(1) != kBands) {
    throw py::value_error("expected levels of the 24 bands 17 to 40, found " +
                          std::to_string(levels.shape(1)));
  }
  py::array_t<ToneRow> rows(levels.shape(0));
  ToneRow* row = rows.mutable_data();
  const double* line = levels.data();
  const double* const end = line + levels.size();
  const py::gil_scoped_release released;
  AQ_Spectrum spectrum;
  for (; line != end; line += kBands) {
    spectrum.assignLevels(kFirstBand, std::span(line, static_cast<std::size_t>(kBands)));
    const ToneCorrection tone = toneCorrection(spectrum);
    *row++ = {tone.correction, tone.band, tone.lastBand};
  }
  return rows;
}

using Metrics = std::tuple<py::array_t<std::int16_t>, Doubles, Doubles, std::optional<NoiseEvent>>;

/// Record numbers, seconds after midnight, metrics by type and record, and the event.
Metrics metricsOf(const AQ_SpectralTimeHistory& history, const AQ_MaskMap* map) {
  const HistoryMetrics metrics = [&] {
    const py::gil_scoped_release released;
    return historyMetrics(history, map);
  }();
  const auto count = std::ssize(metrics.records);
  py::array_t<std::int16_t> numbers(count);
  Doubles seconds(count);
  Doubles values({static_cast<py::ssize_t>(AQ_METRIC_INTEG), count});
  double* const cells = values.mutable_data();
  py::ssize_t place = 0;
  for (const RecordMetrics& record : metrics.records) {
    numbers.mutable_data()[place] = record.record;
    seconds.mutable_data()[place] = record.seconds;
    double* cell = cells + place++;
    for (const double value : record.values) {
      *cell = value;
      cell += count;
    }
  }
  return {numbers, seconds, values, metrics.event};
}

std::tuple<std::size_t, std::int16_t, std::optional<NoiseEvent>> eventAlone(
    const AQ_SpectralTimeHistory& history, const AQ_MaskMap* map) {
  const py::gil_scoped_release released;
  auto [records, first, event] = historyEvent(history, map);
  return {records, first, std::move(event)};
}

NoiseEvent eventOf(const py::object& pnlt, const py::object& seconds,
                   const py::object& corrections) {
  const auto numbers = [](const py::object& given, const char* wanted) {
    return numbersFrom<double>(given, 1, wanted);
  };
  const auto levels = numbers(pnlt, "one PNLT per record");
  const auto durations = numbers(seconds, "seconds, one value or one per record");
  const auto tones = numbers(corrections, "one tone correction per record");
  const auto cells = [](const auto& array) {
    return std::span<const double>(array.data(), static_cast<std::size_t>(array.size()));
  };
  return noiseEvent(cells(levels), cells(durations), cells(tones));
}

std::string eventText(const NoiseEvent& event) {
  return "<NoiseEvent: EPNL " + numberText(std::round(event.epnl * 100) / 100) + ", maximum at " +
         std::to_string(event.maximum) + ">";
}

void bindEvent(const py::module_& module) {
  using E = NoiseEvent;
  py::class_<E>(module, "NoiseEvent",
                "The noise of one aircraft passing by. Record indices start at 0.")
      .def_readonly("maximum", &E::maximum, "The first record with the largest PNLT")
      .def_readonly("first", &E::first,
                    "The record at the first 10 dB-down limit; None if the records begin above it")
      .def_readonly("last", &E::last,
                    "The record at the last 10 dB-down limit; None if the records end above it")
      .def_readonly(
          "secondPeaks", &E::secondPeaks,
          "Other local maxima among the records that the EPNL sums, within 2 dB of the largest")
      .def_readonly("pnltm", &E::pnltm,
                    "The largest PNLT in TPNdB, without the band-sharing adjustment")
      .def_readonly("epnl", &E::epnl, "The EPNL in EPNdB, without the band-sharing adjustment")
      .def_readonly("epnlWithBandSharing", &E::epnlWithBandSharing,
                    "The EPNL in EPNdB, with the band-sharing adjustment")
      .def_readonly("duration", &E::duration, "The duration correction, dB")
      .def_readonly("bandSharing", &E::bandSharing, "The band-sharing adjustment, dB")
      .def("__repr__", eventText);
}

using Difference = std::tuple<std::int16_t, AQ_METRIC_TYPE, double, double>;

std::vector<Difference> differences(const AQ_SpectralTimeHistory& history, const AQ_MaskMap* map,
                                    double tolerance) {
  std::vector<Difference> rows;
  const py::gil_scoped_release released;
  for (const auto& [record, metric, stored, computed] : auditMetrics(history, map, tolerance)) {
    rows.emplace_back(record, metric, stored, computed);
  }
  return rows;
}

}  // namespace

void bindNoise(py::module_& module) {
  PYBIND11_NUMPY_DTYPE(ToneRow, correction, band, last_band);
  PYBIND11_NUMPY_DTYPE(StepRow, band, level, slope, slope_marked, level_marked, adjusted,
                       adjusted_slope, mean_slope, background, difference, correction);
  bindEvent(module);
  const auto masks = py::arg("masks") = py::none();
  const auto map = py::arg("map") = py::none();
  module.def("weightedLevel", weightedLevel, py::arg("spectrum"), py::arg("weighting"), masks,
             "The A-, C- or D-weighted or the overall level in dB; None when no level counts");
  module.def("perceivedNoiseLevel", perceivedNoiseLevel, py::arg("spectrum"), masks,
             "The perceived noise level in PNdB; 0 if the sum of noys is 0");
  module.def("toneSteps", stepsOf, py::arg("spectrum"), masks,
             "The steps of the tone correction, one per band from 80 Hz up");
  module.def(
      "toneCorrections", toneCorrections, py::arg("levels"),
      "Tone correction, its band and the last band used, for each row of levels of bands 17 to 40");
  module.def(
      "historyMetrics", metricsOf, py::arg("history"), map,
      "Record numbers, seconds after midnight, the ten metrics by type and record, and the event");
  module.def("historyEvent", eventAlone, py::arg("history"), map,
             "The number of records, the first record number and the event");
  module.def(
      "setMetrics", setMetrics, py::arg("history"), map,
      "Computes and stores the ten metrics of every record; returns the event, if there is one");
  module.def("noiseEvent", eventOf, py::arg("pnlt"), py::arg("seconds"), py::arg("toneCorrections"),
             "The event in a series of PNLT values");
  module.def(
      "auditMetrics", differences, py::arg("history"), py::arg("map"), py::arg("tolerance"),
      "Record, metric, stored and computed value of every stored metric that differs: by more "
      "than tolerance dB, or at all for bands and flags");
  module.def("membraneOf", membraneOf, py::arg("microphone"),
             "The point at which a microphone measures: X, Y and Z + Height");
  module.def("emissionGeometry", emissionGeometry, py::arg("positions"), py::arg("microphone"),
             py::arg("records"), py::arg("celsius"),
             "Where and when the sound of each record was emitted; no point before the first or "
             "after the last position");
  module.def(
      "maskByAmbient", maskByAmbient, py::arg("history"), py::arg("ambient"), py::arg("margin"),
      "The masking map of a history from an ambient spectrum: masks levels less than margin dB "
      "above the ambient level");
  module.def("speedOfSound", speedOfSound, py::arg("celsius"), "The speed of sound in air, m/s");
}

}  // namespace aq::python
