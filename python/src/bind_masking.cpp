#include <aq/describe/masking.h>

#include "arrays.h"

namespace aq::python {
namespace {

using Codes = py::array_t<std::int8_t, py::array::c_style>;
constexpr std::int8_t kNoDecision = -1;  // in arrays: the row has no mask for the band

Numbered<AQ_MaskRow> rowsOf(const AQ_MaskMap& map) { return numbered<AQ_MaskRow>(map); }

std::int8_t code(std::int64_t value) {
  if (!std::in_range<std::int8_t>(value)) {
    throw Error(ErrorCode::Overflow, "no array code for a mask of value " + std::to_string(value));
  }
  return static_cast<std::int8_t>(value);
}

py::tuple mapToArrays(const AQ_MaskMap& map) {
  const auto rows = rowsOf(map).objects;
  const NumberRange bands = bandsOf(rows);
  const py::ssize_t width = countOf(bands);
  Codes modes({std::ssize(rows), width});
  Codes adjustments({std::ssize(rows), width});
  std::fill_n(modes.mutable_data(), modes.size(), kNoDecision);
  std::fill_n(adjustments.mutable_data(), adjustments.size(), kNoDecision);
  py::ssize_t line = 0;
  for (const auto& row : rows) {
    for (const std::int16_t band : numbersOf({row->LowBand(), row->HighBand()})) {
      const AQ_Mask decision = row->decision(band);
      modes.mutable_at(line, band - bands.low) = code(decision.MaskMode());
      adjustments.mutable_at(line, band - bands.low) = code(decision.AdjustMode());
    }
    ++line;
  }
  return py::make_tuple(modes, adjustments);
}

using Numbers = py::array_t<std::int64_t, py::array::c_style>;

/// The value of a mask enumeration for a number from `first` to `Last`; throws for any other.
template <auto Last>
decltype(Last) member(const char* what, std::int64_t number, std::int32_t first) {
  if (number >= first && number <= Last) return static_cast<decltype(Last)>(number);
  throw py::value_error(std::string("expected ") + what + " of " + std::to_string(first) + " to " +
                        std::to_string(std::int32_t{Last}) + ", found " + std::to_string(number));
}

constexpr auto modeOf = member<MASKED_BY_POST_DETECT>;
constexpr auto adjustmentOf = member<ADJ_TO_REFERENCE>;

/// One row from a line of modes and an optional line of adjustments.
std::shared_ptr<AQ_MaskRow> rowFrom(const Numbers& modes, const Numbers& adjustments,
                                    py::ssize_t line, std::int16_t low) {
  auto row = std::make_shared<AQ_MaskRow>();
  for (py::ssize_t cell = 0; cell < modes.shape(1); ++cell) {
    const AQ_MASK_MODE mode = modeOf("a mask mode", modes.at(line, cell), kNoDecision);
    if (mode == kNoDecision) continue;
    AQ_Mask decision;
    decision.MaskMode(mode);
    if (adjustments.ndim() == 2) {
      decision.AdjustMode(adjustmentOf("an adjustment", adjustments.at(line, cell), 0));
    }
    row->store(static_cast<std::int16_t>(low + cell), decision);
  }
  return row;
}

/// Codes of modes or adjustments. Accepts NaN as no decision, since pandas inserts it when aligning
/// frames, and the booleans of a comparison, with True for masked.
Numbers codesFrom(const py::object& given) {
  const char* const wanted = "numbers in two dimensions, (records, bands)";
  const py::array array = arrayFrom(given);
  if (array.dtype().kind() == 'b') {
    return numbersFrom<std::int64_t>(array.attr("astype")("i1"), 2, wanted);
  }
  if (array.dtype().kind() != 'f') return numbersFrom<std::int64_t>(array, 2, wanted);
  Doubles cells(array.attr("copy")());
  std::replace_if(
      cells.mutable_data(), cells.mutable_data() + cells.size(),
      [](double cell) { return std::isnan(cell); }, double{kNoDecision});
  return numbersFrom<std::int64_t>(cells, 2, wanted);
}

std::shared_ptr<AQ_MaskMap> mapFromArrays(const py::object& modes, const py::object& adjustments,
                                          std::int16_t lowBand, const py::object& records) {
  const auto modeCodes = codesFrom(modes);
  Numbers adjustCodes;
  if (!adjustments.is_none()) {
    adjustCodes = codesFrom(adjustments);
    if (adjustCodes.shape(0) != modeCodes.shape(0) || adjustCodes.shape(1) != modeCodes.shape(1)) {
      throw py::value_error("expected modes and adjustments of the same shape");
    }
  }
  checkBands(lowBand, modeCodes.shape(1));
  auto map = std::make_shared<AQ_MaskMap>();
  py::ssize_t line = 0;
  for (const std::int16_t record : recordNumbers(records, modeCodes.shape(0))) {
    map->Row(record, rowFrom(modeCodes, adjustCodes, line++, lowBand));
  }
  return map;
}

py::array_t<std::int16_t> lastGoodBands(const AQ_MaskMap& map) {
  std::vector<std::int16_t> bands;
  for (const auto& row : rowsOf(map).objects) bands.push_back(row->LGB());
  return numberArray(bands);
}

void setLastGoodBands(const AQ_MaskMap& map, const py::object& given) {
  const auto rows = rowsOf(map).objects;
  const auto bands = shortNumbers(given, std::ssize(rows), "one band number per row");
  for (std::size_t i = 0; i < rows.size(); ++i) rows[i]->LGB(bands[i]);
}

py::list savedMasks(AQ_MaskRow& row) {
  py::list masks;
  for (const std::int16_t band : numbersOf({row.LowBand(), row.HighBand()})) {
    masks.append(py::make_tuple(band, row.Mask(band)));
  }
  return masks;
}

void loadMasks(AQ_MaskRow& row, const py::handle& masks) {
  for (const py::handle item : masks) {
    const auto pair = item.cast<py::tuple>();
    row.Mask(pair[0].cast<std::int16_t>(), pair[1].cast<std::shared_ptr<AQ_Mask>>());
  }
}

void bindRow(const py::module_& module) {
  Bound<AQ_MaskRow> row(module);
  row.def("__repr__", [](const AQ_MaskRow& self) {
    return "<AQ_MaskRow: " + bandsText({self.LowBand(), self.HighBand()}) + ", last good band " +
           std::to_string(self.LGB()) + ">";
  });
  row.container(savedMasks, loadMasks);
}

void bindMap(const py::module_& module) {
  Bound<AQ_MaskMap> map(module);
  map.def("__len__", &AQ_MaskMap::Count)
      .def("__iter__",
           [](const AQ_MaskMap& self) { return py::iter(py::cast(rowsOf(self).objects)); })
      .def_property_readonly(
          "records", [](const AQ_MaskMap& self) { return numberArray(rowsOf(self).numbers); },
          "The record numbers, ascending, shape (rows,)")
      .def_property_readonly(
          "bands",
          [](const AQ_MaskMap& self) {
            return numberArray(numbersOf(bandsOf(rowsOf(self).objects)));
          },
          "The band numbers, from the lowest to the highest in any row, shape (bands,)")
      .def_property("last_good_bands", lastGoodBands, setLastGoodBands,
                    "The last good band of each row, shape (rows,)")
      .def("to_numpy", mapToArrays,
           "Mask modes and adjustments as two int8 arrays, shape (rows, bands); -1 where a row "
           "has no mask")
      .def_static(
          "from_numpy", mapFromArrays, py::arg("modes"), py::arg("adjustments") = py::none(),
          py::arg("low_band") = 17, py::arg("records") = py::none(),
          R"(A new map from modes (0 to 3 or bool) and adjustments (0 to 6), of shape (rows, bands).

-1 stores no mask. Rows are numbered from 1 unless distinct record numbers are given. Raises
ValueError for another shape and for numbers that no mask, record or band can have.

>>> mask = aq_data.AQ_MaskMap.from_numpy(levels < ambient + 3, low_band=17)
)")
      .def("__repr__", [](const AQ_MaskMap& self) {
        return "<AQ_MaskMap: " + std::to_string(self.Count()) + " rows, " +
               bandsText(bandsOf(rowsOf(self).objects)) + ">";
      });
  map.container(
      [](const AQ_MaskMap& self) {
        const auto rows = rowsOf(self);
        return py::make_tuple(rows.numbers, rows.objects);
      },
      [](AQ_MaskMap& self, const py::handle& kept) {
        const auto numbers = kept[py::int_(0)].cast<std::vector<std::int16_t>>();
        const auto rows = kept[py::int_(1)].cast<std::vector<std::shared_ptr<AQ_MaskRow>>>();
        for (std::size_t i = 0; i < numbers.size(); ++i) self.Row(numbers[i], rows.at(i));
      });
}

}  // namespace

void bindMasking(py::module_& module) {
  Bound<AQ_Mask> mask(module);
  // Only members of the enumerations are accepted from Python.
  mask.def_property(
          "MaskMode", [](const AQ_Mask& self) { return self.MaskMode(); },
          [](AQ_Mask& self, AQ_MASK_MODE mode) { self.MaskMode(modeOf("a mask mode", mode, 0)); },
          docOf<AQ_Mask>("MaskMode").c_str())
      .def_property(
          "AdjustMode", [](const AQ_Mask& self) { return self.AdjustMode(); },
          [](AQ_Mask& self, AQ_MASK_ADJUST mode) {
            self.AdjustMode(adjustmentOf("an adjustment", mode, 0));
          },
          docOf<AQ_Mask>("AdjustMode").c_str());
  mask.record();
  bindRow(module);
  bindMap(module);
}

}  // namespace aq::python
