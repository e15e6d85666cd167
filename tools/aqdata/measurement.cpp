#include "tools/aqdata/measurement.h"

#include <aq/check/check_file.h>
#include <aq/text/call_file.h>
#include <fmt/format.h>

#include <algorithm>
#include <filesystem>
#include <iterator>

#include "tools/aqdata/session.h"

namespace aqdata {
namespace {

struct KindNames {
  aq::FileKind kind;
  std::string_view text;
  std::string_view word;
};

constexpr KindNames kKinds[] = {  // in the order of `Measurement`
    {aq::FileKind::SpectralTimeHistory, "spectral time history", "history"},
    {aq::FileKind::MaskingMap, "masking map", "map"},
    {aq::FileKind::SpectrumRecord, "spectrum record", "spectrum"},
    {aq::FileKind::PositionTimeHistory, "position time history", "positions"},
    {aq::FileKind::Tracking, "tracking", "tracking"},
    {aq::FileKind::MicrophonePosition, "microphone position", "microphone"},
    {aq::FileKind::GeometricTimeHistory, "geometric time history", "geometry"},
    {aq::FileKind::VariableInitialization, "variable initialization", "parameters"},
    {aq::FileKind::Unknown, "unknown", "unknown"}};
static_assert(std::size(kKinds) == std::variant_size_v<Measurement> + 1);

const KindNames& namesOf(aq::FileKind kind) {
  return *std::find_if(std::begin(kKinds), std::end(kKinds),
                       [kind](const KindNames& names) { return names.kind == kind; });
}

aq::FileKind kindOf(const std::string& path) {
  expectFile(path);
  return aq::kindOfFile(path);
}

void expectKind(const std::string& path, aq::FileKind expected) {
  const aq::FileKind found = kindOf(path);
  // What cannot be read or has lost its title fails in its reader, which says why.
  if (found == expected || found == aq::FileKind::Unknown) return;
  throw Failure(fmt::format("{}: expected a {} file, found a {} file", aq::escaped(path),
                            kindText(expected), kindText(found)));
}

template <class File, class... Out>
void read(const std::string& path, const aq::HeaderObserver& watch, Out&... out) {
  File file;
  file.observeHeader(watch);
  expectGood(aq::readInto(file, path, out...), file);
}

[[noreturn]] void failUnknown(const std::string& path) {
  aq::AQ_DataASCII lines;
  expectGood(lines.readLines(path), lines);
  const bool empty = lines.Lines()->Count() == 0;
  throw Failure(fmt::format("{}: expected a measurement file, found {}", aq::escaped(path),
                            empty ? "an empty file" : aq::shown(lines.Lines()->Item(1))));
}

History readHistory(const std::string& path, const aq::HeaderObserver& watch) {
  History read;
  const auto watchAll = [&](const aq::HeaderLine& line) {
    if (line.keyword == "ReferenceTimeType") read.referenceType = line.value;
    if (watch) watch(line);
  };
  aqdata::read<aq::AQ_DataSTH>(path, watchAll, read.header, read.history);
  return read;
}

MaskingMap readMap(const std::string& path, const aq::HeaderObserver& watch) {
  MaskingMap read;
  aqdata::read<aq::AQ_DataMask>(path, watch, read.header, read.map);
  return read;
}

SpectrumRecord readSpectrum(const std::string& path, const aq::HeaderObserver& watch) {
  SpectrumRecord read;
  aqdata::read<aq::AQ_DataSSR>(path, watch, read.header, read.spectrum);
  return read;
}

Tracking readTracking(const std::string& path, const aq::HeaderObserver& watch,
                      std::uint8_t rt20Limit) {
  Tracking read;
  aq::AQ_DataTSPI file;
  file.observeHeader(watch);
  file.RT20Limit(rt20Limit);
  expectGood(aq::readInto(file, path, read.history), file);
  read.rejected = file.nBadPositions();
  return read;
}

Positions readPositions(const std::string& path, const aq::HeaderObserver& watch) {
  Positions read;
  aqdata::read<aq::AQ_DataPTH>(path, watch, read.header, read.history);
  return read;
}

Microphone readMicrophone(const std::string& path, const aq::HeaderObserver& watch) {
  Microphone read;
  aqdata::read<aq::AQ_DataMIC>(path, watch, read.header, read.microphone);
  return read;
}

Geometry readGeometry(const std::string& path, const aq::HeaderObserver& watch) {
  Geometry read;
  aqdata::read<aq::AQ_DataGTH>(path, watch, read.header, read.history);
  return read;
}

Parameters readParameters(const std::string& path, const aq::HeaderObserver& watch) {
  Parameters read{std::make_shared<aq::AQ_DataINI>()};
  read.parameters->observeHeader(watch);
  expectGood(read.parameters->readFile(path), *read.parameters);
  return read;
}

}  // namespace

std::string_view kindText(aq::FileKind kind) { return namesOf(kind).text; }
std::string_view kindText(const Measurement& read) { return kKinds[read.index()].text; }
std::string_view kindWord(const Measurement& read) { return kKinds[read.index()].word; }

void expectGood(aq::AQ_DataMessage result, const aq::FileClass& file) {
  if (result != aq::AQ_DATA_OK) throw Failure(file.lastFailure()->message());
}

void expectFile(const std::string& path) {
  std::error_code error;
  const auto status = std::filesystem::status(path, error);
  if (!std::filesystem::is_other(status)) return;
  throw Failure(fmt::format("{}: expected a file, which is read more than once, found a pipe",
                            aq::escaped(path)));
}

Measurement openFile(const std::string& path, const aq::HeaderObserver& watch,
                     std::uint8_t rt20Limit) {
  switch (kindOf(path)) {
    case aq::FileKind::SpectralTimeHistory: return readHistory(path, watch);
    case aq::FileKind::PositionTimeHistory: return readPositions(path, watch);
    case aq::FileKind::MicrophonePosition: return readMicrophone(path, watch);
    case aq::FileKind::GeometricTimeHistory: return readGeometry(path, watch);
    case aq::FileKind::MaskingMap: return readMap(path, watch);
    case aq::FileKind::VariableInitialization: return readParameters(path, watch);
    case aq::FileKind::SpectrumRecord: return readSpectrum(path, watch);
    case aq::FileKind::Tracking: return readTracking(path, watch, rt20Limit);
    case aq::FileKind::Unknown: break;
  }
  failUnknown(path);
}

History openHistory(const std::string& path, const aq::HeaderObserver& watch) {
  expectKind(path, aq::FileKind::SpectralTimeHistory);
  return readHistory(path, watch);
}

MaskingMap openMap(const std::string& path, const aq::HeaderObserver& watch) {
  expectKind(path, aq::FileKind::MaskingMap);
  return readMap(path, watch);
}

MaskingMap openMapOf(const std::string& history, const std::string& map) {
  MaskingMap read = openMap(map);
  aq::checkFit(history, map, [&](const aq::Finding& finding) {
    const std::string record =
        finding.place.record ? fmt::format(", record {}", *finding.place.record) : "";
    throw Failure(fmt::format("{}{}: {}", aq::escaped(map), record, finding.message));
  });
  return read;
}

SpectrumRecord openSpectrum(const std::string& path, const aq::HeaderObserver& watch) {
  expectKind(path, aq::FileKind::SpectrumRecord);
  return readSpectrum(path, watch);
}

Tracking openTracking(const std::string& path, const aq::HeaderObserver& watch,
                      std::uint8_t rt20Limit) {
  expectKind(path, aq::FileKind::Tracking);
  return readTracking(path, watch, rt20Limit);
}

std::string timeText(const aq::AQ_Time& time) {
  try {
    return time.TODstring();
  } catch (const aq::Error&) {
    return {};
  }
}

}  // namespace aqdata
