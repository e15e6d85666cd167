#include "tests/second/values.h"

#include <aq/aq.h>
#include <aq/text/call_file.h>

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstdio>
#include <functional>
#include <map>
#include <string>
#include <string_view>
#include <utility>

namespace {

using namespace aq;

std::string out;

template <class... Values>
void print(const char* form, Values... values) {
  std::array<char, 64> text;
  std::snprintf(text.data(), text.size(), form, values...);
  out += text.data();
}

void put(double value) { print(" %.17g", value); }

void put(const std::string& text) {
  out += " \"";
  for (const char byte : text) {
    if (byte < ' ' || byte > '~' || byte == '"' || byte == '\\') {
      print("\\x%02x", static_cast<unsigned char>(byte));
    } else {
      out += byte;
    }
  }
  out += '"';
}

void put(const AQ_Time& time) {
  put(time.CurrentDate());
  put(time.TODseconds());
}

void put(const Collection<std::string>& texts) {
  for (const std::string& text : texts) put(text);
}

template <class... Values>
void show(const char* key, const Values&... values) {
  out += key;
  (put(values), ...);
  out += '\n';
}

/// Prints each value on its own line, after its key.
template <class... Values>
void showEach(std::string_view keys, const Values&... values) {
  const auto next = [&keys] {
    const std::string_view key = keys.substr(0, keys.find(' '));
    keys.remove_prefix(std::min(keys.size(), key.size() + 1));
    return key;
  };
  ((out += next(), put(values), out += '\n'), ...);
}

template <class File>
void showResult(AQ_DataMessage result, const File& file) {
  print("result %d", result);
  if (file.lastFailure()) {
    print(" %zu %zu", file.lastFailure()->line, file.lastFailure()->field);
  }
  out += '\n';
}

void printLevels(const AQ_Spectrum& spectrum) {
  put(spectrum.LowBand());
  put(spectrum.HighBand());
  for (int band = spectrum.LowBand(); band <= spectrum.HighBand(); ++band) {
    if (spectrum.contains(band)) {
      put(spectrum.SPL(static_cast<std::int16_t>(band)).toDouble());
    } else {
      out += " none";
    }
  }
  out += '\n';
}

void printHeader(const AQ_HeaderSTH& header) {
  showEach(
      "fileName fileDate project microphone adjustment generator generationFile generationDate",
      header.sFileName, *header.aqFileDateTime, header.sProjectName, header.sMicrophoneID,
      header.sAdjustmentCode, header.sGeneratedBy, header.sGenerationFile,
      *header.aqGenerationDateTime);
  show("other", header.cOtherRecords->Count(), *header.cOtherRecords);
  show("comments", header.cCommentLines->Count(), *header.cCommentLines);
}

void printModel(AQ_SpectralTimeHistory& history) {
  showEach("averaging stamp start reference", history.AverageMethod(), history.TimeStampType(),
           history.startTime()->TODseconds(), history.ReferenceTime()->TODseconds());
  show("records", history.Count(), history.LoRec(), history.HiRec());
  for (const auto& [number, spectrum] : history) {
    print("record %d", number);
    put(spectrum->Time()->TODseconds());
    put(spectrum->Time()->RelSeconds());
    printLevels(*spectrum);
  }
}

void printHeader(const AQ_HeaderMask& header) {
  showEach("title fileName fileDate rows", header.sFileType, header.sFileName,
           *header.aqFileDateTime, header.lNumberRows);
  show("bands", header.iBandLow, header.iBandHigh);
  showEach("generator generationFile generationDate", header.sGeneratedBy, header.sGenerationFile,
           *header.aqGenerationDateTime);
  show("other", header.nOtherRecords, *header.cOtherRecords);
  show("comments", header.nCommentLines, *header.cCommentLines);
  show("columns", header.sColumnLabels);
}

void printRow(std::int32_t number, AQ_MaskRow& row) {
  print("row %d", number);
  const int low = row.LowBand();
  const int high = row.HighBand();
  put(low);
  put(high);
  for (int band = low; band <= high; ++band) {
    const auto mask = row.Mask(static_cast<std::int16_t>(band));
    put(mask->MaskMode());
    put(mask->AdjustMode());
  }
  put(row.LGB());
  out += '\n';
}

void printModel(const AQ_MaskMap& map) {
  for (const auto& [number, row] : map) printRow(number, *row);
}

void printHeader(const AQ_HeaderPTH& header) {
  showEach("title fileName fileDate project generator trackFile trackDate records",
           header.sFileType, header.sFileName, *header.aqFileDateTime, header.sProjectName,
           header.sGeneratedBy, header.sTSPIFileName, header.sTSPIFileDateTime,
           header.lNumberRecords);
  show("other", header.nOtherRecords, *header.cOtherRecords);
  show("comments", header.nCommentLines, *header.cCommentLines);
}

void printModel(const AQ_PositionTimeHistory& history) {
  show("positions", history.Count());
  for (int place = 1; place <= history.Count(); ++place) {
    const AQ_Position& position = *history.Position(place);
    show("position", position.lazyTime().secondsOfDay(), position.X(), position.Y(), position.Z());
  }
}

void printHeader(const AQ_HeaderGTH& header) {
  const AQ_Position& microphone = *header.MicrophonePosition;
  showEach("title fileName fileDate project generator microphone", header.FileType,
           header.GTHFileName, *header.GTHFileDateTime, header.ProjectName, header.GeneratedBy,
           header.MicrophoneID);
  show("position", microphone.X(), microphone.Y(), microphone.Z());
  showEach(
      "temperature historyFile historyDate positionFile positionDate microphoneFile "
      "microphoneDate records",
      header.Temperature, header.STHFileName, header.STHFileDateTime, header.PTHFileName,
      header.PTHFileDateTime, header.MICFileName, header.MICFileDateTime, header.NumberRecords);
  show("other", header.OtherRecords, *header.colOtherRecords);
  show("comments", header.nCommentLines, *header.colCommentLines);
}

void printPoint(std::int32_t number, AQ_Geometry& point) {
  const AQ_Position& source = *point.Pe();
  show("point", number, point.Tm()->TODseconds(), point.Te()->TODseconds(), point.Tprope,
       source.X(), source.Y(), source.Z(), point.SRe, point.THETAe, point.BETAe);
}

void printModel(AQ_GeometryTimeHistory& history) {
  show("points", history.Count());
  for (const auto& [number, point] : history) printPoint(number, *point);
}

void printHeader(const AQ_HeaderMIC& header) {
  showEach("title fileName fileDate project microphone", header.sFileType, header.sFileName,
           *header.aqFileDateTime, header.sProjectName, header.sMicrophoneID);
  show("other", header.nOtherRecords, *header.cOtherRecords);
  show("comments", header.nCommentLines, *header.cCommentLines);
}

void printHeader(const AQ_HeaderSSR& header) {
  showEach("fileName fileDate", header.sFileName, *header.aqFileDateTime);
  show("comments", header.cCommentLines->Count(), *header.cCommentLines);
}

void printModel(const AQ_Spectrum& spectrum) {
  out += "spectrum";
  printLevels(spectrum);
}

template <class File, class Header, class Model>
void printFile(const std::string& path) {
  File file;
  std::shared_ptr<Header> header;
  std::shared_ptr<Model> model;
  showResult(readInto(file, path, header, model), file);
  if (header) printHeader(*header);
  if (model) printModel(*model);
}

void printMIC(const std::string& path) {
  AQ_DataMIC file;
  std::shared_ptr<AQ_HeaderMIC> header;
  const auto microphone = std::make_shared<AQ_Microphone>(AQ_Microphone{1, 2, 3, 4});
  showResult(readInto(file, path, header, microphone), file);
  if (header) printHeader(*header);
  show("microphone", microphone->X, microphone->Y, microphone->Z, microphone->Height);
}

void printTSPI(const std::string& path) {
  AQ_DataTSPI file;
  std::shared_ptr<AQ_PositionTimeHistory> history;
  showResult(readInto(file, path, history), file);
  if (history) printModel(*history);
  show("dropped", file.nBadPositions());
}

void printINI(const std::string& path) {
  AQ_DataINI file;  // with values that show what a read leaves alone
  file.CalAdj(1);
  file.NuAvg(AQ_4S95);
  file.PrWndo(2);
  file.PoWndo(3);
  file.NuTimg(AQ_END);
  file.LoRec(4);
  file.HiRec(5);
  file.FileName("name");
  file.Comments()->Add("before");
  showResult(file.readFile(path), file);
  showEach("caladj nuavg prwndo powndo nutimg lorec hirec filename filedatetime comments",
           file.CalAdj(), file.NuAvg(), file.PrWndo(), file.PoWndo(), file.NuTimg(), file.LoRec(),
           file.HiRec(), file.FileName(), *file.FileDate(), *file.Comments());
}

/// Prints a recording. Of its comment lines, prints only which of four words they contain, as the
/// second reader does.
template <class Read>
void printRecording(const std::string& path, const Read& read) {
  AQ_DataHP3565 file;
  std::shared_ptr<AQ_HeaderSTH> header;
  std::shared_ptr<AQ_SpectralTimeHistory> history;
  showResult(read(file, path, header, history), file);
  if (!history) return;
  showEach("project microphone generator averaging start", header->sProjectName,
           header->sMicrophoneID, header->sGeneratedBy, history->AverageMethod(),
           *history->startTime());
  out += "notes";
  for (const char* const word : {"weight", "overload", "valid", "correct"}) {
    const auto& notes = *header->cCommentLines;
    const auto has = [&](const std::string& note) { return note.find(word) != note.npos; };
    if (std::any_of(notes.begin(), notes.end(), has)) out += std::string(" ") + word;
  }
  out += '\n';
  for (std::int16_t number = 1; number <= history->HiRec(); ++number) {
    AQ_Spectrum& spectrum = *history->spectrum(number);
    print("record %d", number);
    put(*spectrum.Time());
    put(spectrum.Time()->RelSeconds());
    for (std::int16_t band = spectrum.LowBand(); band <= spectrum.HighBand(); ++band) {
      if (!spectrum.contains(band)) continue;
      print(" %d", band);
      put(spectrum.SPL(band).toDouble());
    }
    out += '\n';
  }
}

void printSDF(const std::string& path) {
  printRecording(path, [](AQ_DataHP3565& file, auto&... to) { return file.readFile(to...); });
}

/// Like `printSDF`, but reads the recording through its text form.
void printSDFText(const std::string& path) {
  printRecording(path, [](AQ_DataHP3565& file, const std::string& from, auto&... to) {
    const std::string text = from + ".asc";
    const AQ_DataMessage written = file.DAT_to_ASC(from, text);
    const AQ_DataMessage read = written == AQ_DATA_OK ? file.ParseASC(text, to...) : written;
    std::remove(text.c_str());
    return read;
  });
}

void printSPC(const std::string& path) {
  AQ_DataSPC file;
  std::shared_ptr<AQ_HeaderSTH> header;
  std::shared_ptr<AQ_SpectralTimeHistory> history;
  showResult(file.readFile(path, header, history), file);
  if (header) printHeader(*header);
  show("settings", file.RecordLength(), file.NumberFirstRecord(), file.NumberLastRecord(),
       file.BandLow(), file.BandHigh());
  if (!history) return;
  show("reference", history->ReferenceType(), history->startTime()->CurrentDate(),
       history->ReferenceTime()->CurrentDate());
  printModel(*history);
  for (const auto& [record, spectrum] : *history) show("date", spectrum->Time()->CurrentDate());
}

/// `options` is the delimiter, two hexadecimal digits per byte, then a colon, and 1 if fields may
/// be quoted or 0 if not, as in `2c:1`.
void printASCII(const std::string& path, const std::string& options) {
  AQ_DataASCII file;
  std::string delimiter;
  std::size_t at = 0;
  for (; options[at] != ':'; at += 2) {
    delimiter += static_cast<char>(std::stoi(options.substr(at, 2), nullptr, 16));
  }
  file.Delimiter(delimiter);
  file.CommentFields(options[at + 1] == '1');
  file.readLines(path);
  showResult(file.readFields(path), file);
  show("lines", file.Lines()->Count());
  for (int place = 1; place <= file.Lines()->Count(); ++place) {
    showEach("line fields", file.Lines()->Item(place), *file.Fields()->Item(place));
  }
}

}  // namespace

std::string aq::test::valuesOf(const std::string& format, const std::string& path) {
  out.clear();
  static const std::map<std::string, void (*)(const std::string&)> kFormats = {
      {"STH", printFile<AQ_DataSTH, AQ_HeaderSTH, AQ_SpectralTimeHistory>},
      {"MASK", printFile<AQ_DataMask, AQ_HeaderMask, AQ_MaskMap>},
      {"PTH", printFile<AQ_DataPTH, AQ_HeaderPTH, AQ_PositionTimeHistory>},
      {"GTH", printFile<AQ_DataGTH, AQ_HeaderGTH, AQ_GeometryTimeHistory>},
      {"SSR", printFile<AQ_DataSSR, AQ_HeaderSSR, AQ_Spectrum>},
      {"HP3565", printSDF},
      {"HP3565TEXT", printSDFText},
      {"MIC", printMIC},
      {"TSPI", printTSPI},
      {"SPC", printSPC},
      {"INI", printINI}};
  try {
    if (format.starts_with("ASCII:")) {
      printASCII(path, format.substr(6));
    } else {
      kFormats.at(format)(path);
    }
  } catch (const std::exception& error) {
    show("thrown", std::string(error.what()));
  }
  return out;
}
