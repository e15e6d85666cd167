#include "tools/aqdata/convert.h"

#include <aq/core/band_label.h>
#include <aq/core/words.h>
#include <aq/text/number_text.h>
#include <fmt/format.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <optional>
#include <utility>

#include "tools/aqdata/back.h"
#include "tools/aqdata/files.h"
#include "tools/aqdata/noise.h"
#include "tools/aqdata/package.h"
#include "tools/aqdata/path.h"
#include "tools/aqdata/program.h"
#include "tools/aqdata/runs.h"
#include "tools/aqdata/sheet.h"
#include "tools/aqdata/text.h"
#include "tools/aqdata/workbook.h"

namespace aqdata {
namespace {

struct ConvertChoice {
  std::string file;
  std::string to;
  std::optional<std::int16_t> record = {};
  std::string map = {};  // the masking map, for a workbook or netCDF
  bool maps = false;     // use the maps next to the histories
  std::uint8_t rt20 = 1;
};

struct Form {
  std::string name;
  std::string_view ending;  // the ending of file names
};
const Form kForms[] = {{"history", ".sth.csv"},   {"columns", ".spc"},      {"map", ".mask.csv"},
                       {"positions", ".pth.csv"}, {"spectrum", ".ssr.csv"}, {"json", ".json"},
                       {"workbook", ".xlsx"},     {"netcdf", ".nc"},        {"table", ".csv"}};

/// The requested form, or the one that the output's name implies: a table by default. Throws
/// `Failure` if the name does not fit the form or is that of the input.
std::string formOf(const Session& session, const ConvertChoice& choice) {
  std::vector<std::string_view> endings;
  std::string named = "table";
  for (const Form& form : kForms) {
    if (named == "table" && aq::upperCased(session.output).ends_with(aq::upperCased(form.ending))) {
      named = form.name;
    }
    if (choice.to.empty() || choice.to == form.name) endings.push_back(form.ending);
  }
  if (!choice.to.empty()) endings.emplace_back(".txt");
  expectOutput(session, endings, {choice.file});
  return choice.to.empty() ? named : choice.to;
}

std::string rowText(const std::vector<Json>& cells) {
  std::string text;
  for (const Json& cell : cells) {
    if (&cell != &cells.front()) text += ',';
    text += cellText(cell);
  }
  return text;
}

/// One observation per line: each band of a row or, without bands, the row itself.
std::vector<std::string> tidyLines(const Sheet& sheet) {
  std::string heading = fmt::format("{}", fmt::join(sheet.columns, ","));
  if (sheet.hasBands()) heading += ",band," + sheet.ofBand;
  std::vector<std::string> lines{heading};
  for (const Sheet::Row& row : sheet.rows) {
    const std::string front = rowText(row.cells);
    if (!sheet.hasBands()) lines.push_back(front);
    for (std::size_t i = 0; i < row.bands.size(); ++i) {
      lines.push_back(fmt::format("{},{},{}", front, sheet.band(i), cellText(row.bands[i])));
    }
  }
  return lines;
}

/// One line per value of the header, for a file without rows; a list has one line per entry.
std::vector<std::string> headerLines(const Json& header) {
  std::vector<std::string> lines{"key,value"};
  for (const auto& [key, value] : header.items()) {
    for (const Json& entry : value.is_array() ? value : Json{value}) {
      lines.push_back(key + ',' + csvField(cellText(entry)));
    }
  }
  return lines;
}

void put(Session& session, const std::vector<std::string>& lines) {
  if (!session.output.empty()) return writeLines(session, lines);
  for (const std::string& line : lines) session.print(line + '\n');
}

void putSpectrum(const Session& session, const ConvertChoice& choice, const Measurement& read) {
  const auto* const history = std::get_if<History>(&read.data);
  if (history == nullptr) throw Failure("only a history has spectrum records to extract");
  if (!choice.record) throw Failure("expected --record N to choose the record");
  const auto spectrum = [&] {
    try {
      return history->model->spectrum(*choice.record);
    } catch (const aq::Error&) {
      throw Failure(fmt::format("{}: has no record {}", aq::escaped(choice.file), *choice.record));
    }
  }();
  const auto header = std::make_shared<aq::AQ_HeaderSSR>();
  header->cCommentLines->Add(fmt::format("{}, record {} at {}", history->header->sProjectName,
                                         *choice.record, timeText(spectrum->timeValue())));
  writeOutput<aq::AQ_DataSSR>(session, header, *spectrum);
}

/// Writes the history of a measurement, comma-separated or in fixed columns.
void putHistory(Session& session, const ConvertChoice& choice, const Measurement& measurement,
                bool inColumns) {
  const auto* const read = std::get_if<History>(&measurement.data);
  if (read == nullptr) throw Failure("only a history or a recording can become a history");
  if (choice.record) throw Failure("--record does not apply to a history");
  for (const std::string& note :
       writeHistory(session, *read, session.output, choice.file, inColumns)) {
    session.tell(fmt::format("{}: {}", aq::escaped(session.output), note));
  }
}

/// The plural name of a form that cannot go to standard output; empty for other forms.
std::string_view formWord(const std::string& form) {
  if (form == "history" || form == "columns") return "histories";
  if (form == "map") return "maps";
  if (form == "workbook") return "workbooks";
  if (form == "netcdf") return "netCDF files";
  return form == "spectrum" ? "spectra" : form == "positions" ? "positions" : "";
}

void putMap(const Session& session, const Measurement& measurement) {
  const auto* const read = std::get_if<MaskingMap>(&measurement.data);
  if (read == nullptr) throw Failure("only a masking map, or its table or JSON, converts to a map");
  writeOutput<aq::AQ_DataMask>(session, read->header, *read->model);
}

/// Writes positions, from a tracking file or from a table or document that `convert` has written.
void putPositions(Session& session, const ConvertChoice& choice) {
  if (choice.record) throw Failure("--record does not apply to positions");
  const auto back =
      aq::kindOfFile(choice.file) == aq::FileKind::Unknown ? backFrom(choice.file) : std::nullopt;
  const auto* const read = back ? std::get_if<Positions>(&back->data) : nullptr;
  if (read == nullptr) {
    return writePositions(session, openTracking(choice.file, {}, choice.rt20), choice.file);
  }
  writeOutput<aq::AQ_DataPTH>(session, read->header, *read->model);
  session.wrote("written");
}

/// The first four bytes of a file.
std::string beginningOf(const std::string& path) {
  std::ifstream file(pathOf(path), std::ios::binary);
  std::string begin(4, '\0');
  file.read(begin.data(), static_cast<std::streamsize>(begin.size()));
  return begin;
}

/// Reads a file of any kind, or a table or document that `convert` has written.
Measurement readAny(const ConvertChoice& choice) {
  if (beginningOf(choice.file) == "PK\x03\x04") {
    throw Failure(
        fmt::format("{}: expected a measurement file, found a workbook, which "
                    "aq_data.read_excel reads in Python",
                    aq::escaped(choice.file)));
  }
  if (aq::kindOfFile(choice.file) == aq::FileKind::Unknown) {
    if (auto back = backFrom(choice.file)) return *std::move(back);
  }
  return openFile(choice.file, {}, choice.rt20);
}

/// Whether a file begins as netCDF does, classic or version 4.
bool isNetcdf(const std::string& path) {
  const std::string begin = beginningOf(path);
  return begin == "\x89HDF" || begin.starts_with("CDF");
}

/// When a file was last written; nothing if it does not exist.
std::optional<std::filesystem::file_time_type> timeOf(const std::string& path) {
  std::error_code error;
  const auto time = std::filesystem::last_write_time(pathOf(path), error);
  return error ? std::nullopt : std::optional(time);
}

/// Converts to and from netCDF with the Python package.
void putNetcdf(Session& session, const ConvertChoice& choice) {
  if (choice.record) throw Failure("--record does not apply to netCDF");
  std::vector<std::string> words{"convert", choice.file, outputPlace(session)};
  if (session.force) words.insert(words.begin(), "--force");
  if (!isNetcdf(choice.file))
    static_cast<void>(openFile(choice.file));  // throws if the file cannot be read
  const std::string map = choice.maps ? nextToHistory(choice.file, ".mask.csv") : choice.map;
  if (!map.empty()) {
    static_cast<void>(openMapOf(openHistory(choice.file), choice.file, map));
    words.push_back(map);
  }
  // The package also writes a map if the file has a history and its masks.
  const std::string madeMap = nextToHistory(session.output, ".mask.csv");
  const auto before = timeOf(madeMap);
  runPackage("netCDF", words);
  if (timeOf(madeMap) == before) return session.wrote("written");
  if (session.json) {
    return session.printDocument(Json{{"output", session.output}, {"map", madeMap}});
  }
  session.wrote("written");
  session.tell(fmt::format("{}: written", aq::escaped(madeMap)));
}

/// Writes all runs into one workbook, but only if every file could be read.
void putWorkbook(Session& session, const ConvertChoice& choice) {
  const std::vector<std::string> files = chosenHistories(session);
  if (choice.record) throw Failure("--record does not apply to a workbook");
  if (!choice.map.empty() && (files.size() > 1 || choice.maps)) {
    throw Failure("--mask names the map of a single history; use --masks for several");
  }
  if (session.intoStream())
    throw Failure("a workbook cannot go to standard output: name a file with -o");
  expectOutput(session, {".xlsx"}, files);
  Workbook workbook(outputPlace(session));
  for (std::size_t i = 0; i < files.size(); ++i) {
    onFile(session, files[i], [&] {
      const Run run =
          openRun({files[i], choice.maps ? nextToHistory(files[i], ".mask.csv") : choice.map, {}});
      for (const std::string& note : workbook.add(run, files[i])) {
        session.tell(fmt::format("{}: {}", aq::escaped(files[i]), note));
      }
    });
    session.progress(i + 1, files.size());
  }
  if (session.status() != kFine)
    throw Failure("nothing was written, because some files could not be read");
  workbook.finish();
  session.wrote(counted(files.size(), "run"));
}

void convert(Session& session, ConvertChoice choice) {
  choice.file = session.files.front();
  const std::string form = formOf(session, choice);
  const bool netcdf = form == "netcdf" || isNetcdf(choice.file);
  if (form != "workbook") {
    std::error_code error;
    if (session.files.size() > 1 || std::filesystem::is_directory(pathOf(choice.file), error)) {
      throw Failure("only a workbook holds several files: -o must end in .xlsx");
    }
    if (form != "netcdf" && (!choice.map.empty() || choice.maps)) {
      throw Failure("only a workbook or netCDF holds a map");
    }
  }
  const bool asHistory = form == "history" || form == "columns";
  if (session.output.empty() && !formWord(form).empty()) {
    throw Failure(
        fmt::format("{} cannot go to standard output: name a file with -o", formWord(form)));
  }
  if (netcdf) {
    if (session.output.empty()) throw Failure("name the output file with -o");
    return putNetcdf(session, choice);
  }
  if (form == "positions") return putPositions(session, choice);
  if (form == "workbook") return putWorkbook(session, choice);
  const Measurement read = readAny(choice);
  if (form == "map") {
    putMap(session, read);
  } else if (form == "spectrum") {
    putSpectrum(session, choice, read);
  } else if (asHistory) {
    putHistory(session, choice, read, form == "columns");
  } else {
    Sheet sheet = sheetOf(read);
    if (choice.record) sheet.keepRows({*choice.record, *choice.record}, choice.file);
    if (form == "json") {
      put(session, {lineOf(documentOf(choice.file, read, sheet))});
    } else {
      put(session, sheet.columns.empty() ? headerLines(headerOf(read)) : tidyLines(sheet));
    }
  }
  if (!session.output.empty()) session.wrote("written");
}

}  // namespace

Json documentOf(const std::string& path, const Measurement& read, const Sheet& sheet) {
  Json document{{"file", path}, {"kind", kindText(read.kind)}, {"header", headerOf(read)}};
  if (sheet.hasBands()) {
    document["low_band"] = sheet.low;
    document["high_band"] = sheet.high;
  }
  Json& rows = document["rows"] = Json::array();
  for (const Sheet::Row& row : sheet.rows) {
    Json entry;
    for (std::size_t i = 0; i < row.cells.size(); ++i) entry[sheet.columns[i]] = row.cells[i];
    if (sheet.hasBands()) entry[sheet.ofBand] = row.bands;
    rows.push_back(std::move(entry));
  }
  return document;
}

void writePositions(Session& session, const Tracking& track, const std::string& from) {
  const auto header = std::make_shared<aq::AQ_HeaderPTH>();
  header->sGeneratedBy = "aqdata";
  header->sTSPIFileName = from;
  writeOutput<aq::AQ_DataPTH>(session, header, *track.model);
  const auto count = static_cast<std::size_t>(track.model->Count());
  session.wrote(fmt::format("{}, {} rejected", counted(count, "position"), track.rejected));
}

void addConvert(CLI::App& program, Session& session) {
  const auto choice = std::make_shared<ConvertChoice>();
  CLI::App* const command = addCommand(
      program, session, "convert", "Write a file in another form",
      "The ending of OUT chooses the form: .sth.csv (history), .spc (history in fixed\n"
      "columns), .pth.csv (positions), .ssr.csv (one spectrum), .mask.csv (map), .json,\n"
      ".xlsx (workbook), .nc (netCDF), or .csv, a table with one observation per line.\n"
      "A name without an ending means a table unless --to FORM names another form; with\n"
      "--to the name may also end in .txt. Without OUT, tables and JSON go to standard\n"
      "output.\n\n"
      "Examples:\n"
      "  aqdata convert fly-over.sth.csv -o levels.csv\n"
      "  aqdata convert fly-over.sth.csv --record 30 -o overhead.ssr.csv\n"
      "  aqdata convert fly-over.sth.csv -o fly-over.spc\n"
      "  aqdata convert fly-over.tspi.csv -o track.pth.csv\n",
      [&session, choice] { convert(session, *choice); });
  command->add_option("FILE", session.files, "The file to convert, or several for a workbook")
      ->required()
      ->type_name("");
  addOutputFile(*command, session, "The file to write", false);
  CLI::Option* const form =
      command->add_option("--to", choice->to, "The form, if the ending of OUT does not give it")
          ->option_text("FORM");
  addWords(session, *form,
           {"table", "json", "history", "columns", "map", "positions", "spectrum", "workbook",
            "netcdf"});
  command->add_option("--record", choice->record, "Convert only this record")
      ->check(wholeNumber(-32768, 32767), "")
      ->option_text("N");
  command
      ->add_option("--mask", choice->map,
                   "The masking map of the history, for a workbook or netCDF")
      ->option_text("MAP");
  command->add_flag("--masks", choice->maps,
                    "Use maps next to histories: x.mask.csv for x.sth.csv");
  command
      ->add_option("--rt20", choice->rt20,
                   "Reject tracking fixes with an RT20 figure above this (1)")
      ->check(wholeNumber(0, 255), "")
      ->option_text("N");
}

}  // namespace aqdata
