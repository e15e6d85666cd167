
#include <algorithm>
#include <limits>
#include <new>
#include <optional>
#include <utility>

#include "aq/text/level_code.h"
#include "component/com.h"
#include "component/convert.h"
#include "component/extras.h"

// Members that only the component has. Most pass whole series as arrays, which let a host fill a
// sheet in one call.

namespace aq::com {
namespace {

/// The numbers from `low` to `high`, inclusive.
struct Range {
  std::int32_t low = std::numeric_limits<std::int32_t>::max();
  std::int32_t high = std::numeric_limits<std::int32_t>::min();

  void take(std::int32_t from, std::int32_t to) {
    if (from > to) return;  // the range is empty
    low = std::min(low, from);
    high = std::max(high, to);
  }
  [[nodiscard]] std::size_t size() const {
    return low > high ? 0 : static_cast<std::size_t>(std::int64_t{high} - low + 1);
  }
  [[nodiscard]] std::size_t placeOf(std::int32_t number) const {
    return static_cast<std::size_t>(std::int64_t{number} - low);
  }
  [[nodiscard]] std::int32_t numberAt(std::size_t place) const {
    return low + static_cast<std::int32_t>(place);
  }
};

/// An array for the host. Its values are initially Empty, and its indices start at 1, since some
/// hosts support no other bounds.
class NewArray {
 public:
  NewArray(std::size_t rows, std::size_t columns, UINT dimensions = 2) : rows_(rows) {
    constexpr std::size_t kMost = std::numeric_limits<LONG>::max() / sizeof(VARIANT);
    if (columns != 0 && rows > kMost / columns) throw std::bad_alloc();
    SAFEARRAYBOUND bounds[] = {{static_cast<ULONG>(rows), 1}, {static_cast<ULONG>(columns), 1}};
    array_ = SafeArrayCreate(VT_VARIANT, dimensions, bounds);
    void* data = nullptr;
    if (array_ == nullptr || FAILED(SafeArrayAccessData(array_, &data))) throw std::bad_alloc();
    cells_ = static_cast<VARIANT*>(data);
  }
  NewArray(const NewArray&) = delete;
  NewArray& operator=(const NewArray&) = delete;
  ~NewArray() {
    if (array_ == nullptr) return;
    SafeArrayUnaccessData(array_);
    SafeArrayDestroy(array_);
  }

  [[nodiscard]] VARIANT& at(std::size_t row, std::size_t column) const {
    return cells_[column * rows_ + row];
  }
  void number(std::size_t row, std::size_t column, double value) const {
    VARIANT& cell = at(row, column);
    cell.vt = VT_R8;
    cell.dblVal = value;
  }

  void release(VARIANT& to) {
    SafeArrayUnaccessData(array_);
    to.parray = std::exchange(array_, nullptr);
    to.vt = VT_ARRAY | VT_VARIANT;
  }

 private:
  SAFEARRAY* array_ = nullptr;
  VARIANT* cells_ = nullptr;
  std::size_t rows_;
};

/// A two-dimensional array from the host, with any bounds and any element type.
class GivenTable {
 public:
  explicit GivenTable(const VARIANT& given) : array_(given) {
    if (array_.bounds().size() != 2) throw Fault{DISP_E_TYPEMISMATCH};
  }

  /// Throws `InvalidArgument` unless the table has these dimensions.
  void wantShape(std::size_t rows, std::size_t columns) const {
    if (this->rows() == rows && this->columns() == columns) return;
    throw Error(ErrorCode::InvalidArgument, "expected " + shape(rows, columns) + ", found " +
                                                shape(this->rows(), this->columns()));
  }

  [[nodiscard]] Variant at(std::size_t row, std::size_t column) const {
    return variantOf(array_.at(column * rows() + row));
  }

 private:
  [[nodiscard]] std::size_t rows() const { return array_.bounds()[1].cElements; }
  [[nodiscard]] std::size_t columns() const { return array_.bounds()[0].cElements; }
  static std::string shape(std::size_t rows, std::size_t columns) {
    return "an array of " + std::to_string(rows) + " by " + std::to_string(columns);
  }

  GivenArray array_;
};

std::string placeText(const char* what, std::int32_t record, std::int32_t band) {
  return std::string(what) + " of record " + std::to_string(record) + ", band " +
         std::to_string(band) + ": ";
}

template <class C>
C& self(const Call& call) {
  return *static_cast<C*>(call.object);
}

/// A required argument; if it is text, it is the name of a file.
template <class T>
T argument(const Call& call, std::size_t place) {
  return Argument<T>(Given{call.given[place], place, TextKind::Name}).get();
}

struct Extent {
  Range records;
  Range bands;
};

Extent extentOf(AQ_SpectralTimeHistory& history) {
  Extent extent;
  if (history.begin() == history.end()) return extent;
  extent.records.take(history.LoRec(), history.HiRec());
  for (const auto& [record, spectrum] : history) {
    if (spectrum) extent.bands.take(spectrum->LowBand(), spectrum->HighBand());
  }
  return extent;
}

Extent extentOf(const AQ_MaskMap& map) {
  Extent extent;
  for (const auto& [record, row] : map) {
    extent.records.take(record, record);
    if (row) extent.bands.take(row->LowBand(), row->HighBand());
  }
  return extent;
}

[[nodiscard]] bool contains(const Range& range, std::int32_t number) {
  return number >= range.low && number <= range.high;
}

/// Puts levels into a row. Numbers of any type become doubles; other values stay as they are.
void putLevels(const NewArray& array, std::size_t row, const Range& bands,
               const AQ_Spectrum& spectrum) {
  const auto codes = spectrum.levelCodes();
  const auto doubles = spectrum.levelNumbers();
  if (!codes.empty() || !doubles.empty()) {
    std::size_t column = bands.placeOf(spectrum.LowBand());
    for (const LevelCode code : codes) array.number(row, column++, levelOf(code));
    for (const double level : doubles) array.number(row, column++, level);
    return;
  }
  for (const auto& [band, level] : spectrum) {
    if (!contains(bands, band)) continue;
    const bool isNumber =
        level.type() >= Variant::Type::Int16 && level.type() <= Variant::Type::Double;
    setVariant(array.at(row, bands.placeOf(band)), isNumber ? Variant(level.toDouble()) : level);
  }
}

void getLevels(const Call& call) {
  auto& history = self<AQ_SpectralTimeHistory>(call);
  const auto [records, bands] = extentOf(history);
  if (records.size() == 0 || bands.size() == 0) return;
  NewArray array(records.size(), bands.size());
  for (const auto& [record, spectrum] : history) {
    if (!spectrum || !contains(records, record)) continue;
    putLevels(array, records.placeOf(record), bands, *spectrum);
  }
  array.release(call.result);
}

/// A value to store, from a cell of a table.
template <class Owner, class Given>
struct Change {
  std::shared_ptr<Owner> owner;
  std::int16_t band;
  Given given;
};

/// Converts all cells that are not Empty with `read(cell)` before anything is changed. Throws
/// for a cell whose record is missing.
template <class Owner, class OwnerOf, class Read>
auto changesOf(const Call& call, const Extent& extent, const char* what, const OwnerOf& ownerOf,
               const Read& read) {
  const GivenTable table =
      reading({call.value, 0, TextKind::Plain}, [&call] { return GivenTable(*call.value); });
  table.wantShape(extent.records.size(), extent.bands.size());
  std::vector<Change<Owner, decltype(read(Variant()))>> changes;
  for (std::size_t row = 0; row < extent.records.size(); ++row) {
    const auto record = static_cast<std::int16_t>(extent.records.numberAt(row));
    for (std::size_t column = 0; column < extent.bands.size(); ++column) {
      const auto band = static_cast<std::int16_t>(extent.bands.numberAt(column));
      try {
        const Variant cell = table.at(row, column);
        if (!cell.isEmpty()) changes.push_back({required(ownerOf(record)), band, read(cell)});
      } catch (const Error& error) {
        throw Error(error.code(), placeText(what, record, band) + error.what());
      } catch (const Fault&) {
        throw Error(ErrorCode::TypeMismatch,
                    placeText(what, record, band) + "neither a number nor text");
      }
    }
  }
  return changes;
}

void setLevels(const Call& call) {
  auto& history = self<AQ_SpectralTimeHistory>(call);
  const auto changes = changesOf<AQ_Spectrum>(
      call, extentOf(history), "level",
      [&](std::int16_t record) { return history.spectrum(record); },
      [](const Variant& cell) { return cell.toDouble(); });
  for (const auto& [spectrum, band, level] : changes) spectrum->SPL(band, level);
}

void getMetricTable(const Call& call) {
  auto& history = self<AQ_SpectralTimeHistory>(call);
  const auto metric = argument<AQ_METRIC_TYPE>(call, 0);
  const Range records = extentOf(history).records;
  if (records.size() == 0) return;
  NewArray array(records.size(), 1, 1);
  for (const auto& [record, spectrum] : history) {
    if (!spectrum || !spectrum->hasMetric() || !contains(records, record)) continue;
    const auto metrics = spectrum->Metric();
    if (!metrics->contains(metric)) continue;
    setVariant(array.at(records.placeOf(record), 0), metrics->MetricValue(metric));
  }
  array.release(call.result);
}

void getMaskStrings(const Call& call) {
  const auto& map = self<AQ_MaskMap>(call);
  const auto [records, bands] = extentOf(map);
  if (records.size() == 0 || bands.size() == 0) return;
  NewArray array(records.size(), bands.size());
  for (const auto& [record, row] : map) {
    if (!row) continue;
    for (const auto& [band, mask] : *row) {
      if (!contains(bands, band)) continue;
      setText(array.at(records.placeOf(record), bands.placeOf(band)), mask.MaskString(),
              TextKind::Plain);
    }
  }
  array.release(call.result);
}

/// Rejects letters that a mask would ignore, since a table is assigned completely or not at all.
AQ_Mask maskOf(const Variant& cell) {
  const std::string letters = cell.toString();
  AQ_Mask mask;
  mask.MaskString(letters);
  if (mask.MaskString() != letters) {
    throw Error(ErrorCode::InvalidArgument,
                "expected a letter of -MAF and one of -SFTACR, found " + shown(letters));
  }
  return mask;
}

void setMaskStrings(const Call& call) {
  auto& map = self<AQ_MaskMap>(call);
  const auto changes = changesOf<AQ_MaskRow>(
      call, extentOf(map), "mask", [&](std::int16_t record) { return map.Row(record); }, maskOf);
  for (const auto& [row, band, given] : changes) {
    const auto mask = row->Mask(band);
    mask->MaskMode(given.MaskMode());
    mask->AdjustMode(given.AdjustMode());
  }
}

void getPositions(const Call& call) {
  const auto& positions = self<AQ_PositionTimeHistory>(call);
  std::vector<std::shared_ptr<AQ_Position>> all;
  for (const auto& [place, position] : positions) all.push_back(position);
  if (all.empty()) return;
  NewArray array(all.size(), 4);
  for (std::size_t row = 0; row < all.size(); ++row) {
    if (!all[row]) continue;
    AQ_Position& position = *all[row];
    std::size_t column = 0;
    for (const double number :
         {position.Time()->TODseconds(), position.X(), position.Y(), position.Z()}) {
      array.number(row, column++, number);
    }
  }
  array.release(call.result);
}

void getPoints(const Call& call) {
  const auto& history = self<AQ_GeometryTimeHistory>(call);
  std::vector<std::pair<std::int32_t, std::shared_ptr<AQ_Geometry>>> all;
  for (const auto& [record, point] : history) all.emplace_back(record, point);
  if (all.empty()) return;
  NewArray array(all.size(), 10);
  for (std::size_t row = 0; row < all.size(); ++row) {
    if (!all[row].second) continue;
    AQ_Geometry& point = *all[row].second;
    AQ_Position& source = *point.Pe();
    std::size_t column = 0;
    for (const double number : {double(all[row].first), point.Tm()->TODseconds(),
                                point.Te()->TODseconds(), point.Tprope, source.X(), source.Y(),
                                source.Z(), point.SRe, double(point.THETAe), double(point.BETAe)}) {
      array.number(row, column++, number);
    }
  }
  array.release(call.result);
}

std::string lineOf(const Finding& finding) {
  std::string line(severityText(finding.kind.severity));
  line.append(" ").append(finding.kind.name).append(": ");
  if (finding.place.line != 0) line += "line " + std::to_string(finding.place.line) + ": ";
  return line + finding.message;
}

/// Returns the findings of `check` about the file that the call's first argument names.
template <class Check>
void giveFindings(const Call& call, const Check& check) {
  auto lines = std::make_shared<Collection<Message>>();
  check(argument<std::string>(call, 0),
        [&lines](const Finding& finding) { lines->Add({lineOf(finding)}); });
  setObject(call.result, std::move(lines), tableOf<Collection<Message>>());
}
void checkFileLines(const Call& call) { giveFindings(call, checkFile); }
void checkFixesLines(const Call& call) {
  const auto limit = argument<std::uint8_t>(call, 1);
  giveFindings(call,
               [&](const auto& path, const auto& report) { checkFixes(path, limit, report); });
}
void checkFitLines(const Call& call) {
  const auto map = argument<std::string>(call, 1);
  giveFindings(call, [&](const auto& path, const auto& report) { checkFit(path, map, report); });
}

void getVersion(const Call& call) { setText(call.result, AQ_VERSION, TextKind::Plain); }

}  // namespace

ExtraCalls callsOf(const Extra& extra) {
  const std::string_view name = extra.name;
  if (name == "Levels") return {getLevels, setLevels};
  if (name == "MetricTable") return {getMetricTable};
  if (name == "MaskStrings") return {getMaskStrings, setMaskStrings};
  if (name == "Table") {
    return extra.owner == describe::Description<AQ_PositionTimeHistory>::name
               ? ExtraCalls{getPositions}
               : ExtraCalls{getPoints};
  }
  if (name == "checkFile") return {checkFileLines};
  if (name == "checkFixes") return {checkFixesLines};
  if (name == "checkFit") return {checkFitLines};
  return {getVersion};
}

}  // namespace aq::com
