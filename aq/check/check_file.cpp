#include "aq/check/check_file.h"

#include <algorithm>
#include <iterator>
#include <utility>

#include "aq/check/checks.h"
#include "aq/check/header_check.h"
#include "aq/check/line_shapes.h"
#include "aq/check/text_form.h"
#include "aq/core/platform.h"
#include "aq/core/words.h"
#include "aq/spectral/spectral_time_history.h"
#include "aq/text/checked_keywords.h"
#include "aq/text/fields.h"
#include "aq/text/line_reader.h"
#include "aq/text/number_text.h"

namespace aq {
namespace {

/// Whether a line heads a table that `aqdata` writes: records, positions, microphones, values of a
/// header or events.
bool isTableHeading(std::string_view line) {
  constexpr std::string_view kBeginnings[] = {"record,", "position,time,", "microphone,x,",
                                              "key,value", "file,records,EPNL"};
  return std::any_of(std::begin(kBeginnings), std::end(kBeginnings),
                     [line](std::string_view begin) { return line.starts_with(begin); });
}

void reportUnknown(const std::string& path, const Reporter& report) {
  LineReader lines(path);
  if (!lines.next()) return report(Kind::UnknownKind, {.line = 1}, "it is empty");
  const std::string begins = "it begins with " + shown(lines.line());
  const Kind kind = isTableHeading(lines.line()) ? Kind::Table : Kind::UnknownKind;
  report(kind, {.line = 1}, begins);
}

void checkAs(FileKind kind, const std::string& path, const Reporter& report) {
  if (kind == FileKind::Unknown) return reportUnknown(path, report);
  forFormats([&]<class File, class Header, class Model>(const Format<File, Header, Model>& format) {
    if (format.kind == kind) check(FileOf<File>{path}, report);
  });
}

/// Reports damage that other programs did to the text. If that makes the file unreadable, reports
/// nothing else; otherwise calls `checkData` with the kind of the file.
template <class CheckData>
void checkText(const std::string& path, Reporter& report, const CheckData& checkData) {
  std::string head = headOf(path);
  const FileKind kind = kindOfFile(path);
  const auto fault =
      kind == FileKind::Unknown && !faultOfBytes(head) ? faultOfLines(head) : faultOfBytes(head);
  if (fault) return report(fault->kind, {.line = fault->line}, fault->message);
  if (head.starts_with(kByteOrderMark)) {
    report(Kind::ByteOrderMark, {.line = 1},
           "a byte order mark precedes the first line; save the file as plain text without it");
  }
  report.fileBegins(std::move(head));
  checkData(kind);
  report.fileBegins({});
}

/// Runs `check`. Reports the file as unreadable if that throws a library exception, for example
/// because the file cannot be opened or changes during the check.
template <class Check>
void checking(const Reporter& reporter, const Check& check) {
  try {
    check();
  } catch (const ReadFailure& failed) {
    reporter.unreadable(failed.failure);
  } catch (const platform::SystemError& error) {
    reporter.unreadable({.file = {}, .expected = error.wanted(), .found = error.what()});
  } catch (const Error& error) {  // for example, more than 32767 records
    reporter(Kind::Unreadable, {}, error.what());
  }
}

/// Reports an unknown averaging method, which is read as LINEAR, and an unknown time stamp type,
/// which is read as START.
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

/// Reports nothing for a history that cannot be read.
void checkFitOf(const std::string& historyPath, const AQ_MaskMap& map, const Reporter& report) {
  const auto read = historyIn(historyPath);
  if (read.model) checkMapFit(*read.model, platform::fileName(historyPath), map, report);
}

void checkParameters(const AQ_DataINI& file, const Reporter& report) {
  const auto contradicts = [&](const std::string& message) {
    report(Kind::Contradiction, {}, message);
  };
  if (file.LoRec() > 0 && file.HiRec() > 0 && file.HiRec() < file.LoRec()) {
    contradicts("the last record, " + std::to_string(file.HiRec()) + ", is before the first, " +
                std::to_string(file.LoRec()));
  }
  if (file.PrWndo() < 0 || file.PoWndo() < 0) contradicts("a window has a negative length");
}

}  // namespace

void checkFile(const std::string& path, const FindingSink& report) {
  Reporter reporter(report);
  checking(reporter, [&] {
    checkText(path, reporter, [&](FileKind kind) { checkAs(kind, path, reporter); });
  });
  reporter.finish();
}

void checkFixes(const std::string& path, std::uint8_t limit, const FindingSink& report) {
  Reporter reporter(report);
  checking(reporter, [&] { checkQuality(FileOf<AQ_DataTSPI>{path}, limit, reporter); });
  reporter.finish();
}

void checkFit(const AQ_SpectralTimeHistory& history, const std::string& historyName,
              const AQ_MaskMap& map, const FindingSink& report) {
  Reporter reporter(report);
  checkMapFit(history, historyName, map, reporter);
  reporter.finish();
}

void checkFit(const std::string& historyPath, const std::string& mapPath,
              const FindingSink& report) {
  Reporter reporter(report);
  checking(reporter, [&] {
    AQ_DataMask file;
    Content<AQ_HeaderMask, AQ_MaskMap> read;
    if (readContent(file, mapPath, read) == AQ_DATA_OK)
      checkFitOf(historyPath, *read.model, reporter);
  });
  reporter.finish();
}

Checked checkWithHistory(const std::string& path, const FindingSink& report) {
  Reporter reporter(report);
  const auto checkData = [&](FileKind kind) {
    if (kind == FileKind::GeometricTimeHistory) {
      const auto read = check(FileOf<AQ_DataGTH>{path}, reporter);
      if (read.model && read.model->Count() != 0) checkSources(read, path, reporter);
    } else if (kind == FileKind::PositionTimeHistory) {
      const auto read = check(FileOf<AQ_DataPTH>{path}, reporter);
      if (read.model && read.model->Count() != 0) checkSources(read, path, reporter);
    } else if (kind == FileKind::MaskingMap) {
      const auto read = check(FileOf<AQ_DataMask>{path}, reporter);
      if (!read.model) return;
      const std::string history = sourceBeside(path, read.header->sGenerationFile);
      if (!history.empty()) checkFitOf(history, *read.model, reporter);
    } else {
      checkAs(kind, path, reporter);
    }
  };
  checking(reporter, [&] { checkText(path, reporter, checkData); });
  reporter.finish();
  return {reporter.levels()};
}

void check(FileOf<AQ_DataINI> of, const Reporter& report) {
  constexpr std::string_view kTitle = "FILETYPE";  // begins the title in line 1, which readers skip
  AQ_DataINI file;
  std::size_t nameLine = 0;
  file.observeHeader([&](const HeaderLine& line) {
    std::string_view text = trimmed(line.text);
    if (line.number == 1 && text.starts_with(kByteOrderMark)) text.remove_prefix(3);
    if (line.use != HeaderLine::Use::Unused) checkFieldsAfterValue(line, report);
    checkParameterWord(line, report);
    if (line.keyword == "FileName") nameLine = line.number;
    if (line.use != HeaderLine::Use::Unused || text.empty()) return;
    if (line.number == 1 && upperCased(text).starts_with(kTitle)) return;
    report(Kind::UnknownKeyword, {.line = line.number}, shown(text) + " is ignored");
  });
  if (file.readFile(of.path) != AQ_DATA_OK) return report.unreadable(*file.lastFailure());
  if (nameLine != 0) checkFileName(nameLine, file.FileName(), of.path, report);
  checkParameters(file, report);
  checkEnd(of.path, report);
}

void checkNothingAfter(const std::string& path, std::size_t last, const Reporter& report) {
  LineReader lines(path);
  std::size_t first = 0;
  std::size_t count = 0;
  while (lines.next()) {
    if (lines.number() <= last || trimmed(lines.line()).empty()) continue;
    if (++count == 1) first = lines.number();
  }
  if (count == 0) return;
  report(Kind::SecondDataSet, {.line = first},
         "lines ignored from here on: " + std::to_string(count));
}

}  // namespace aq
