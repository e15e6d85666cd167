#include "tools/aqdata/measurement.h"

#include <aq/check/check_file.h>
#include <aq/files/late_times.h>
#include <fmt/format.h>

#include <cmath>
#include <filesystem>
#include <optional>

#include "aq/text/date_text.h"
#include "tools/aqdata/path.h"
#include "tools/aqdata/session.h"

namespace aqdata {
namespace {

aq::FileKind kindOf(const std::string& path) {
  expectFile(path);
  return aq::kindOfFile(path);
}

[[noreturn]] void failUnknown(const std::string& path) {
  aq::AQ_DataASCII lines;
  expectGood(lines.readLines(path), lines);
  const bool empty = lines.Lines()->Count() == 0;
  throw Failure(fmt::format("{}: expected a measurement file, found {}", aq::escaped(path),
                            empty ? "an empty file" : aq::shown(lines.Lines()->Item(1))));
}

/// How a file is read: what observes its header lines, and which tracking fixes are dropped.
struct Reading {
  const aq::HeaderObserver& watch;
  std::uint8_t rt20Limit = 1;
};

/// The record length in seconds: the one that a file in columns gives or, in a recording, the time
/// from the first record to the second. No value for other files, or for a single record.
template <class File>
std::optional<double> recordLengthOf(const File& file, const aq::AQ_SpectralTimeHistory& history) {
  if constexpr (std::is_same_v<File, aq::AQ_DataSPC>) return file.RecordLength();
  if (!std::is_same_v<File, aq::AQ_DataHP3565> || !history.contains(2)) return std::nullopt;
  const auto at = [&](std::int16_t record) {
    return history.spectrum(record)->timeValue().RelSeconds();
  };
  return std::round((at(2) - at(1)) * 1e3) / 1e3;
}

template <class File, class Header, class Model>
Held<Header, Model> readBy(const std::string& path, const Reading& how) {
  Held<Header, Model> held;
  File file;
  file.observeHeader(how.watch);
  if constexpr (requires { held.words; }) {
    file.observeHeader([&](const aq::HeaderLine& line) {
      held.words.see(line);
      aq::showLine(how.watch, line);
    });
  }
  if constexpr (requires { file.RT20Limit(how.rt20Limit); }) file.RT20Limit(how.rt20Limit);
  expectGood(aq::readContent(file, path, held), file);
  if constexpr (requires { held.recordLength; }) {
    held.recordLength = recordLengthOf(file, *held.model).value_or(held.recordLength);
  }
  if constexpr (requires { held.words; }) held.others = held.words.takeInto(*held.model);
  if constexpr (requires { held.rejected; }) held.rejected = file.nBadPositions();
  return held;
}

Measurement readAs(aq::FileKind kind, const std::string& path, const Reading& how) {
  Measurement read{kind, {}};
  aq::forFormats(
      [&]<class File, class Header, class Model>(const aq::Format<File, Header, Model>& format) {
        if (format.kind == kind) read.data = readBy<File, Header, Model>(path, how);
      });
  return read;
}

/// `found` if its files hold `Wanted`, otherwise the first kind whose files do.
template <class Wanted>
aq::FileKind kindHolding(aq::FileKind found) {
  auto kind = aq::FileKind::Unknown;
  aq::forFormats(
      [&]<class File, class Header, class Model>(const aq::Format<File, Header, Model>& format) {
        if constexpr (std::is_same_v<Held<Header, Model>, Wanted>) {
          if (kind == aq::FileKind::Unknown || format.kind == found) kind = format.kind;
        }
      });
  return kind;
}

std::string fileOf(aq::FileKind kind) {
  const char* const article = kind == aq::FileKind::AnalyzerRecording ? "an" : "a";
  return fmt::format("{} {} file", article, kindText(kind));
}

template <class Wanted>
Wanted openHeld(const std::string& path, const Reading& how) {
  const aq::FileKind found = kindOf(path);
  const aq::FileKind kind = kindHolding<Wanted>(found);
  // A file that cannot be read or has lost its title is left to the reader, whose failure says why.
  if (found != kind && found != aq::FileKind::Unknown) {
    throw Failure(fmt::format("{}: expected a {} file, found {}", aq::escaped(path), kindText(kind),
                              fileOf(found)));
  }
  return std::get<Wanted>(readAs(kind, path, how).data);
}

}  // namespace

std::string_view kindWord(aq::FileKind kind) {
  std::string_view word;
  aq::forFormats([&](const auto& format) {
    if (format.kind == kind) word = format.word;
  });
  return word;
}

void expectKnownWords(const History& read, const std::string& path) {
  if (read.others.empty()) return;
  const aq::HistoryWords::Other& other = read.others.front();
  throw Failure(fmt::format("{}: has the {} {}, which is unknown and would be written as {}",
                            aq::escaped(path), other.what, aq::shown(other.word), other.readAs));
}

void expectGood(aq::AQ_DataMessage result, const aq::FileClass& file) {
  if (result != aq::AQ_DATA_OK) throw Failure(file.lastFailure()->message());
}

void expectFile(const std::string& path) {
  std::error_code error;
  const auto status = std::filesystem::status(pathOf(path), error);
  if (!std::filesystem::is_other(status)) return;
  throw Failure(fmt::format("{}: is a pipe or a device; only a file can be read more than once",
                            aq::escaped(path)));
}

Measurement openFile(const std::string& path, const aq::HeaderObserver& watch,
                     std::uint8_t rt20Limit) {
  const aq::FileKind kind = kindOf(path);
  if (kind == aq::FileKind::Unknown) failUnknown(path);
  return readAs(kind, path, {watch, rt20Limit});
}

History openHistory(const std::string& path, const aq::HeaderObserver& watch) {
  return openHeld<History>(path, {watch});
}

MaskingMap openMap(const std::string& path, const aq::HeaderObserver& watch) {
  return openHeld<MaskingMap>(path, {watch});
}

MaskingMap openMapOf(const History& history, const std::string& historyPath,
                     const std::string& map) {
  MaskingMap read = openMap(map);
  const std::string name = pathOf(historyPath).filename().string();
  aq::checkFit(*history.model, name, *read.model, [&](const aq::Finding& finding) {
    const std::string record =
        finding.place.record ? fmt::format(", record {}", *finding.place.record) : "";
    throw Failure(fmt::format("{}{}: {}", aq::escaped(map), record, finding.message));
  });
  return read;
}

SpectrumRecord openSpectrum(const std::string& path, const aq::HeaderObserver& watch) {
  return openHeld<SpectrumRecord>(path, {watch});
}

Tracking openTracking(const std::string& path, const aq::HeaderObserver& watch,
                      std::uint8_t rt20Limit) {
  return openHeld<Tracking>(path, {watch, rt20Limit});
}

aq::AQ_Time timeFrom(const char* option, const std::string& text) {
  aq::AQ_Time time;
  try {
    time.TODstring(aq::clockTimeFrom(text.substr(0, text.find('.'))));  // rejects hours past 23
    time.TODstring(text);
  } catch (const aq::Error&) {
    throw Failure(
        fmt::format("{}: expected a time of day hh:mm:ss, found {}", option, aq::shown(text)));
  }
  return time;
}

Microphone openMicrophone(const std::string& path) { return openHeld<Microphone>(path, {{}}); }

Geometry openGeometry(const std::string& path) {
  const Measurement read = openFile(path);
  if (const auto* const geometry = std::get_if<Geometry>(&read.data)) return *geometry;
  throw Failure(fmt::format("{}: expected a geometric time history file, found {}",
                            aq::escaped(path), fileOf(read.kind)));
}

FlownPath openPath(const std::string& path) {
  const Measurement read = openFile(path);
  if (const auto* const flown = std::get_if<Positions>(&read.data)) return {flown->model};
  if (const auto* const fixes = std::get_if<Tracking>(&read.data)) {
    return {fixes->model, fixes->rejected};
  }
  throw Failure(fmt::format("{}: expected a position time history or tracking file, found {}",
                            aq::escaped(path), fileOf(read.kind)));
}

std::string timeText(aq::AQ_Time time) {
  try {
    aq::roundLateTime(time);
    return time.TODstring();
  } catch (const aq::Error&) {
    return {};
  }
}

}  // namespace aqdata
