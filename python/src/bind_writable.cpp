#include <aq/describe/files.h>
#include <aq/files/late_times.h>

#include "levels.h"

// Rejects data that a file cannot hold. The file classes write each record with its own bands, but
// a file names the bands of its columns only once, so records with other bands would be read back
// with wrong band numbers.

namespace aq::python {
namespace {

void checkAny(const NumberRange& bands) {
  if (bands.high < bands.low) throw py::value_error("expected an object with bands, found none");
}

/// Checks that every band between the lowest and the highest has a level. Levels in one block never
/// have gaps.
void checkLevels(const AQ_Spectrum& spectrum) {
  if (!spectrum.levelCodes().empty() || !spectrum.levelDoubles().empty()) return;
  for (const std::int16_t band : numbersOf({spectrum.LowBand(), spectrum.HighBand()})) {
    (void)spectrum.SPL(band);
  }
}

void checkLevels(const AQ_MaskRow& /*row*/) {}  // a band without a mask is written as not masked

/// Checks that `series` has an object for each number from `first` to `last`, all with the same
/// bands.
template <class Series, class Object>
void checkRecords(std::int32_t first, std::int32_t last, const Series& series,
                  std::shared_ptr<Object> (Series::*get)(std::int16_t) const) {
  if (last < first) throw py::value_error("expected an object with records, found none");
  NumberRange bands;
  for (std::int32_t number = first; number <= last; ++number) {
    const auto record = static_cast<std::int16_t>(number);
    const auto object = series.contains(record) ? (series.*get)(record) : nullptr;
    if (!object) {
      throw py::value_error("expected all records from " + std::to_string(first) + " to " +
                            std::to_string(last) + ", found no record " + std::to_string(number));
    }
    const NumberRange own{object->LowBand(), object->HighBand()};
    if (number == first) bands = own;
    if (own.low != bands.low || own.high != bands.high) {
      throw py::value_error("record " + std::to_string(number) + " has " + bandsText(own) +
                            ", but record " + std::to_string(first) + " has " + bandsText(bands));
    }
    at("record", record, [&] { checkLevels(*object); });
  }
  checkAny(bands);
}

void checkDates(AQ_SpectralTimeHistory& history) {
  if (keepsDates(history)) return;
  throw py::value_error("expected records dated like startTime, or one day later after midnight");
}

}  // namespace

void bindWritable(py::module_& module) {
  constexpr const char* kName = "_checkWritable";
  module.def(
      kName,
      [](AQ_SpectralTimeHistory& history, FileKind kind) {
        if (kind == FileKind::FixedColumnHistory) return checkDates(history);
        checkRecords(history.LoRec(), history.HiRec(), history, &AQ_SpectralTimeHistory::spectrum);
      },
      py::arg("model"), py::arg("kind"), "Raises for data that a file of this kind cannot hold");
  module.def(
      kName,
      [](const AQ_MaskMap& map, FileKind /*kind*/) {
        checkRecords(1, map.Count(), map, &AQ_MaskMap::Row);
      },
      py::arg("model"), py::arg("kind"));
  module.def(
      kName,
      [](const AQ_Spectrum& spectrum, FileKind /*kind*/) {
        checkAny({spectrum.LowBand(), spectrum.HighBand()});
        checkLevels(spectrum);
      },
      py::arg("model"), py::arg("kind"));
  const auto finds = [&module](auto* find, const char* doc) {
    module.def("_hasLateTimes", find, py::arg("model"), doc);
  };
  finds(static_cast<bool (*)(AQ_SpectralTimeHistory&)>(hasLateTimes),
        "Whether the text of any time would be nearly a second early");
  finds(static_cast<bool (*)(const AQ_PositionTimeHistory&)>(hasLateTimes), "");
  finds(static_cast<bool (*)(const AQ_GeometryTimeHistory&)>(hasLateTimes), "");
  const auto rounds = [&module](auto* round, const char* doc) {
    module.def("_roundLateTimes", round, py::arg("model"), doc);
  };
  rounds(
      static_cast<bool (*)(AQ_SpectralTimeHistory&)>(roundLateTimes),
      "Rounds up times whose text would be nearly a second early; returns whether there were any");
  rounds(static_cast<bool (*)(const AQ_PositionTimeHistory&)>(roundLateTimes), "");
  rounds(static_cast<bool (*)(const AQ_GeometryTimeHistory&)>(roundLateTimes), "");
}

}  // namespace aq::python
