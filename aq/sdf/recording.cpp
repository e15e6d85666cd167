#include "aq/sdf/recording.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>

#include "aq/core/platform.h"
#include "aq/text/fields.h"

namespace aq::sdf {
namespace {

constexpr std::uint64_t kHead = kRecordHead;

/// The whole file, unless its first bytes show that it is not a recording.
std::vector<char> bytesOf(const std::string& path) {
  constexpr std::size_t kFirst = std::size_t{64} * 1024;
  platform::InputFile file(path);
  std::vector<char> bytes(kFirst);
  std::size_t size = 0;
  while (const std::size_t got = file.read(std::span(bytes).subspan(size))) {
    size += got;
    if (size >= kMark.size() && !std::string_view(bytes.data(), size).starts_with(kMark)) break;
    if (size == bytes.size()) bytes.resize(2 * size);
  }
  bytes.resize(size);
  return bytes;
}

/// The size of the header of a scan variable record; the values follow it.
std::size_t headerOf(const Record& record) {
  constexpr std::size_t kScansHeader = 36;
  constexpr std::size_t kVariableHeader = 54;
  return record.type() == RecordType::Scans ? kScansHeader : kVariableHeader;
}

const Field& unitField(const Record& record) {
  return record.type() == RecordType::Scans ? kScans["scanUnit"] : kScanVariable["scanUnit"];
}

NumberType variableType(const Record& record) {
  return numberType(record, record.type() == RecordType::Scans ? kScans["scanVar_type"]
                                                               : kScanVariable["scanVar_type"]);
}

/// The records that hold values of scan variables, those of revision 3 first.
std::vector<const Record*> variableRecords(const RecordList& records) {
  std::vector<const Record*> found;
  for (const RecordType type : {RecordType::ScanVariable, RecordType::Scans}) {
    for (const Record& record : records.all(type)) {
      if (record.size() > headerOf(record)) found.push_back(&record);
    }
  }
  return found;
}

bool isOfAll(const Record& variable, std::size_t data) {
  if (variable.type() == RecordType::Scans) return true;
  const std::int32_t number = variable.integer(kScanVariable["DATA_recordNum"]);
  return number == -1 || std::cmp_equal(number, data);
}

bool isTime(const Record& record, const UnitOfValues& unit) {
  constexpr std::int32_t kTimeBase = 2;
  return unit.isTime() || (record.type() == RecordType::ScanVariable &&
                           record.integer(kScanVariable["scanBase_type"]) == kTimeBase);
}

/// The size of values that end at offset `end` of their record, as text for a failure.
std::string countedText(std::uint64_t end) {
  constexpr std::uint64_t kTooMany = std::numeric_limits<std::uint64_t>::max();
  const std::string bytes = end == kTooMany ? "2^64 or more" : std::to_string(end - kHead);
  return "the " + bytes + " bytes that the data headers count";
}

void requireOne(const RecordList& records, RecordType type) {
  const std::size_t count = records.all(type).size();
  if (count > 1) {
    failRead(0, 0, "one " + std::string(layoutOf(type).name), std::to_string(count) + " of them");
  }
}

}  // namespace

NumberType numberType(const Record& record, const Field& field) {
  const std::int32_t code = record.integer(field);
  if (code < static_cast<std::int32_t>(NumberType::Short) ||
      code > static_cast<std::int32_t>(NumberType::Double)) {
    record.fail("a " + std::string(field.name) + " from 1 to 4", std::to_string(code));
  }
  return static_cast<NumberType>(code);
}

Recording Recording::fromFile(const std::string& path) {
  return Recording(RecordList(bytesOf(path)));
}

Recording::Recording(RecordList records) : records_(std::move(records)) {
  requireOne(records_, RecordType::Scans);
  requireOne(records_, RecordType::X);
  readScans();
  checkScanValues();
  readSets();
  placeY();
  placeX();
}

Recording::Recording(RecordList records, TextTraces traces)
    : records_(std::move(records)), fromText_(true), text_(std::move(traces)) {
  readScans();
  readSets();
}

void Recording::readScans() {
  const auto take = [&](const Record& record, const Field& count, const Field& last,
                        const Field& order) {
    const std::int32_t lastScan = record.integer(last);
    scans_.any = true;
    scans_.kept = record.count(count);
    if (lastScan < -1 || std::cmp_greater_equal(lastScan, scans_.kept)) {
      record.fail("a last_scan_index below " + std::to_string(scans_.kept),
                  std::to_string(lastScan));
    }
    scans_.valid = static_cast<std::size_t>(lastScan) + 1;
    const std::int32_t code = record.integer(order);
    if (code != 0 && code != 1) record.fail("a scan_type of 0 or 1", std::to_string(code));
    scans_.byData = code == 0;
  };
  if (!records_.all(RecordType::ManyScans).empty()) {
    take(records_.all(RecordType::ManyScans).front(), kManyScans["num_of_scan"],
         kManyScans["last_scan_index"], kManyScans["scan_type"]);
  } else if (!records_.all(RecordType::Scans).empty()) {
    take(records_.all(RecordType::Scans).front(), kScans["num_of_scan"], kScans["last_scan_index"],
         kScans["scan_type"]);
  }
}

void Recording::checkScanValues() const {
  for (const Record* const record : variableRecords(records_)) {
    const std::uint64_t room = record->size() - headerOf(*record);
    const std::uint64_t needed = times(scans_.kept, sizeOf(variableType(*record)));
    if (needed > room) {
      record->fail(std::to_string(needed) + " bytes of values", "room for " + std::to_string(room));
    }
  }
}

TraceSet Recording::setOf(const Record& header) const {
  constexpr int kScansByData =
      2;  // the first revision whose data headers say whether they belong to the scans
  constexpr int kMultiPass = 3;
  const bool counts32 = records_.revision() >= 3 && header.has(kData["num_of_points"]);
  TraceSet set{.header = header};
  set.points = header.count(counts32 ? kData["num_of_points"] : kData["num_of_pointsOld"]);
  set.valuesOfPoint = std::size_t{header.count(kData["yPerPoint"])} *
                      (header.integer(kData["yIsComplex"]) != 0 ? 2 : 1);
  set.traces = std::size_t{header.count(kData["total_rows"])} * header.count(kData["total_cols"]);
  set.type = numberType(header, kData["ydata_type"]);
  set.traceBytes = times(times(set.points, set.valuesOfPoint), sizeOf(set.type));
  if (set.traceBytes == 0) set.traces = 0;
  set.scanned =
      scans_.any && (records_.revision() < kScansByData || header.integer(kData["scanData"]) != 0);
  const std::int32_t axis = header.integer(kData["xResolution_type"]);
  if (axis < 0 || axis > static_cast<std::int32_t>(Axis::OfTrace)) {
    header.fail("an xResolution_type from 0 to 4", std::to_string(axis));
  }
  set.axis = static_cast<Axis>(axis);
  if (records_.revision() >= kMultiPass && header.has(kData["multiPassMode"]) &&
      header.integer(kData["multiPassMode"]) != 0) {
    header.fail("a multiPassMode of 0", std::to_string(header.integer(kData["multiPassMode"])));
  }
  return set;
}

void Recording::readSets() {
  for (const Record& header : records_.all(RecordType::Data)) sets_.push_back(setOf(header));
}

void Recording::placeY() {
  std::uint64_t at = kHead;
  const auto whole = [](const TraceSet& set) { return times(set.traceBytes, set.traces); };
  std::uint64_t scanBytes = 0;  // bytes of one scan, all scanned sets together
  for (const TraceSet& set : sets_) {
    if (set.scanned) scanBytes = plus(scanBytes, whole(set));
  }
  for (TraceSet& set : sets_) {
    if (!set.scanned) continue;
    set.at = at;
    set.scanBytes = scans_.byData ? whole(set) : scanBytes;
    at = plus(at, times(whole(set), scans_.byData ? scans_.kept : 1));
  }
  if (!scans_.byData) at = plus(kHead, times(scanBytes, scans_.kept));
  for (TraceSet& set : sets_) {
    if (set.scanned) continue;
    set.at = at;
    at = plus(at, whole(set));
  }
  const Record& record = records_.all(RecordType::Y).front();
  if (at > record.size()) {
    record.fail(countedText(at), std::to_string(record.size() - kHead));
  }
}

void Recording::placeX() {
  std::uint64_t end = endOfX(true);
  const auto& records = records_.all(RecordType::X);
  if (end == kHead) return;
  if (records.empty()) failRead(0, 0, "a record SDF_XDATA_HDR (type 16)", "none");
  const Record& record = records.front();
  // Files store the x vector of a trace once per scan, or once for all scans.
  axisOfScan_ = end <= record.size();
  if (!axisOfScan_) end = endOfX(false);
  if (end > record.size()) {
    record.fail(countedText(end), std::to_string(record.size() - kHead));
  }
}

/// Finds the offsets of the x vectors and returns the end of the last one.
std::uint64_t Recording::endOfX(bool eachScan) {
  std::uint64_t at = kHead;
  for (TraceSet& set : sets_) {
    if (set.axis < Axis::OfFile) continue;
    set.axisType = numberType(set.header, kData["xdata_type"]);
    set.axisStep = set.header.count(kData["xPerPoint"]);
    if (set.axisStep == 0) set.header.fail("an xPerPoint above 0", "0");
    set.axisBytes = times(times(set.points, set.axisStep), sizeOf(set.axisType));
    set.axisAt = set.axis == Axis::OfFile ? kHead : at;
    if (set.axis == Axis::OfFile) {
      at = std::max(at, plus(kHead, set.axisBytes));
    } else {
      const std::uint64_t vectors =
          set.axis == Axis::OfData ? 1 : times(set.traces, eachScan ? scansOf(set) : 1);
      at = plus(at, times(set.axisBytes, vectors));
    }
  }
  return at;
}

const TextTrace& Recording::textTrace(const TraceSet& set, std::size_t trace,
                                      std::size_t scan) const {
  const auto found = text_.find({placeOf(set), trace, scan});
  if (found == text_.end()) {
    failRead(0, 0,
             "the values of data " + std::to_string(placeOf(set)) + ", vector " +
                 std::to_string(trace) + ", scan " + std::to_string(scan),
             "none");
  }
  return found->second;
}

Numbers Recording::y(const TraceSet& set, std::size_t trace, std::size_t scan) const {
  if (isText()) {
    const std::string& values = textTrace(set, trace, scan).values;
    return {values.data(), values.size() / sizeof(double), NumberType::Double};
  }
  const char* const record = records_.all(RecordType::Y).front().bytes().data();
  return {record + set.at + scan * set.scanBytes + trace * set.traceBytes,
          set.points * set.valuesOfPoint, set.type};
}

std::vector<double> Recording::x(const TraceSet& set, std::size_t trace, std::size_t scan,
                                 std::size_t points) const {
  constexpr int kDoubles = 2;
  std::vector<double> x(points);
  if (set.axis < Axis::OfFile) {
    const double first =
        records_.real(set.header, kData["abscissa_firstX"], kDoubles, kData["abscissa_firstXOld"]);
    const double step =
        records_.real(set.header, kData["abscissa_deltaX"], kDoubles, kData["abscissa_deltaXOld"]);
    for (std::size_t i = 0; i < points; ++i) {
      const auto place = static_cast<double>(i);
      x[i] = set.axis == Axis::Linear ? first + place * step : first * std::pow(step, place);
    }
  } else if (isText()) {
    const std::string& text = textTrace(set, trace, scan).x;
    if (text.size() < points * sizeof(double)) {
      failRead(0, 0, "an x for each value of data " + std::to_string(placeOf(set)), "none");
    }
    Numbers{text.data(), points, NumberType::Double}.copyTo(x);
  } else {
    const std::size_t ofScan = axisOfScan_ ? scan * set.traces : 0;
    const std::size_t vector = set.axis == Axis::OfTrace ? ofScan + trace : 0;
    const char* const record = records_.all(RecordType::X).front().bytes().data();
    Numbers{record + set.axisAt + vector * set.axisBytes, points, set.axisType, set.axisStep}
        .copyTo(x);
  }
  return x;
}

std::optional<ScanVariable> Recording::scanVariable(const TraceSet& set) const {
  std::optional<ScanVariable> first;
  for (const Record* const record : variableRecords(records_)) {
    if (!isOfAll(*record, placeOf(set))) continue;
    ScanVariable variable{record, record->unit(unitField(*record)), false, variableType(*record)};
    variable.isTime = isTime(*record, variable.unit);
    if (variable.isTime) return variable;
    if (!first) first = variable;
  }
  return first;
}

std::optional<double> Recording::scanValue(const ScanVariable& variable, const TraceSet& set,
                                           std::size_t trace, std::size_t scan) const {
  if (isText()) return textTrace(set, trace, scan).scanVariable;
  const Record& record = *variable.record;
  return Numbers{record.bytes().data() + headerOf(record), scans_.kept, variable.type}[scan];
}

}  // namespace aq::sdf
