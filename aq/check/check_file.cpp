#include "aq/check/check_file.h"

#include <filesystem>

#include "aq/check/checks.h"
#include "aq/check/header_check.h"
#include "aq/core/platform.h"
#include "aq/core/words.h"
#include "aq/files/data_ini.h"
#include "aq/files/file_kind.h"
#include "aq/spectral/spectral_time_history.h"
#include "aq/text/checked_keywords.h"
#include "aq/text/fields.h"
#include "aq/text/line_reader.h"
#include "aq/text/number_text.h"

namespace aq {
namespace {

void checkKind(const std::string& path, const Reporter& report) {
  switch (kindOfFile(path)) {
    case FileKind::SpectralTimeHistory: return checkHistory(path, report);
    case FileKind::PositionTimeHistory: return checkPositions(path, report);
    case FileKind::MicrophonePosition: return checkMicrophone(path, report);
    case FileKind::GeometricTimeHistory: return checkGeometry(path, report);
    case FileKind::MaskingMap: return checkMaskingMap(path, report);
    case FileKind::VariableInitialization: return checkParameters(path, report);
    case FileKind::SpectrumRecord: return checkSpectrumRecord(path, report);
    case FileKind::Tracking: return checkTracking(path, report);
    case FileKind::Unknown: break;
  }
  LineReader lines(path);
  report(Kind::UnknownKind, {.line = 1},
         lines.next() ? "it begins with " + shown(lines.line()) : "it is empty");
}

/// Runs `check`; a file that changes meanwhile does not read.
template <class Check>
void checking(const Reporter& reporter, const Check& check) {
  try {
    check();
  } catch (const ReadFailure& failed) {
    reporter.unreadable(failed.failure);
  } catch (const platform::SystemError& error) {
    reporter.unreadable({.file = {}, .expected = error.wanted(), .found = error.what()});
  } catch (const Error& error) {  // more records than the interface counts
    reporter(Kind::Unreadable, {}, error.what());
  }
}

/// A word that is not known is read as the first one.
void checkParameterWord(const HeaderLine& line, const Reporter& report) {
  const bool averaging = line.keyword == keywords::kNuAvg;
  if (!averaging && line.keyword != keywords::kNuTimg) return;
  std::string scratch;
  const std::string_view word = cleanField(line.value.substr(0, line.value.find(',')), scratch);
  AQ_AverageMethod method{};
  AQ_TimeStampType type{};
  averaging ? setByWord(method, word) : setByWord(type, word);
  checkWord(line.number, word, averaging ? wordOf(method) : wordOf(type), report);
}

}  // namespace

void checkFile(const std::string& path, const FindingSink& report) {
  const Reporter reporter(report);
  checking(reporter, [&] { checkKind(path, reporter); });
}

void checkFixes(const std::string& path, std::uint8_t limit, const FindingSink& report) {
  const Reporter reporter(report);
  checking(reporter, [&] { checkFixQuality(path, limit, reporter); });
}

void checkFit(const std::string& historyPath, const std::string& mapPath,
              const FindingSink& report) {
  const Reporter reporter(report);
  checking(reporter, [&] { checkMapFit(historyPath, mapPath, reporter); });
}

void checkWithHistory(const std::string& path, const FindingSink& report) {
  checkFile(path, report);
  const std::string history = historyOfMap(path);
  std::error_code error;
  if (std::filesystem::is_regular_file(history, error)) checkFit(history, path, report);
}

void checkParameters(const std::string& path, const Reporter& report) {
  constexpr std::string_view kTitle = "FILETYPE";  // that the file carries and nobody reads
  AQ_DataINI file;
  file.observeHeader([&](const HeaderLine& line) {
    const std::string_view text = trimmed(line.text);
    if (line.use != HeaderLine::Use::Unused) checkFieldsBehind(line, report);
    checkParameterWord(line, report);
    if (line.use != HeaderLine::Use::Unused || text.empty()) return;
    if (line.number == 1 && upperCased(text).starts_with(kTitle)) return;
    report(Kind::UnknownKeyword, {.line = line.number}, shown(text) + " is passed over");
  });
  if (file.readFile(path) != AQ_DATA_OK) report.unreadable(*file.lastFailure());
}

void checkNothingBehind(const std::string& path, std::size_t last, const Reporter& report) {
  LineReader lines(path);
  std::size_t first = 0;
  std::size_t count = 0;
  while (lines.next()) {
    if (lines.number() <= last || trimmed(lines.line()).empty()) continue;
    if (++count == 1) first = lines.number();
  }
  if (count == 0) return;
  report(Kind::SecondDataSet, {.line = first},
         "lines that are not read: " + std::to_string(count) + " from here on");
}

}  // namespace aq
