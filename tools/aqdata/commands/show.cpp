#include <fmt/format.h>

#include "tools/aqdata/convert.h"
#include "tools/aqdata/files.h"
#include "tools/aqdata/plot.h"
#include "tools/aqdata/program.h"
#include "tools/aqdata/sheet.h"
#include "tools/aqdata/text.h"

namespace aqdata {
namespace {

struct ShowChoice {
  std::string file;
  std::string records;
  std::string bands;
  std::string map;
  std::size_t most = 10;  // how many records the command `head` shows
  bool levels = false;
  bool plot = false;
  bool spectrogram = false;
};

/// If there is a map, marks the levels that it masks.
void takeMasks(Sheet& sheet, const Measurement& read, const ShowChoice& choice) {
  if (choice.map.empty()) return;
  const auto* const history = std::get_if<History>(&read.data);
  if (history == nullptr)
    throw Failure(fmt::format("{}: has no records to mask", aq::escaped(choice.file)));
  const auto map = openMapOf(*history, choice.file, choice.map).model;
  for (Sheet::Row& row : sheet.rows) {
    const auto decisions = map->Row(static_cast<std::int16_t>(row.number));
    for (std::size_t i = 0; i < row.bands.size(); ++i) {
      row.masked.push_back(decisions->decision(sheet.band(i)).MaskMode() != aq::NOT_MASKED);
    }
  }
}

std::string bandText(Session& session, const Json& cell, bool masked) {
  const std::string text =
      cell.is_number() ? fmt::format("{:.2f}", cell.get<double>()) : cellText(cell);
  return masked ? session.faint(text + '*') : text;
}

/// Prints the rows, with one column per band after the others.
void printBands(Session& session, const Sheet& sheet) {
  std::vector<Table::Column> columns;
  for (const std::string& name : sheet.columns) columns.push_back({name, true});
  for (std::int32_t band = sheet.low; band <= sheet.high; ++band) {
    columns.push_back({fmt::format("{}", band), true});
  }
  Table table(columns);
  for (const Sheet::Row& row : sheet.rows) {
    std::vector<std::string> cells;
    for (const Json& cell : row.cells) cells.push_back(cellText(cell));
    for (std::size_t i = 0; i < row.bands.size(); ++i) {
      cells.push_back(bandText(session, row.bands[i], row.masks(i)));
    }
    table.add(std::move(cells));
  }
  table.print(session);
}

/// A summary of a row: the energy sum of its bands, the loudest band, and how many are masked.
std::vector<std::string> summaryOf(const Sheet& sheet, const Sheet::Row& row) {
  std::size_t loudest = row.bands.size();
  std::size_t masked = 0;
  for (std::size_t i = 0; i < row.bands.size(); ++i) {
    if (row.masks(i)) ++masked;
    if (!isLevel(row.bands[i])) continue;
    if (loudest == row.bands.size() || row.bands[i] > row.bands[loudest]) loudest = i;
  }
  const Json sum = energySum(row.bands);
  std::vector<std::string> cells{sum.is_null() ? "-" : fmt::format("{:.2f}", sum.get<double>())};
  const bool none = loudest == row.bands.size();
  cells.push_back(none ? "-" : fmt::format("{:.2f}", row.bands[loudest].get<double>()));
  cells.push_back(none ? "-" : fmt::format("{}", sheet.band(loudest)));
  if (!row.masked.empty()) cells.push_back(fmt::format("{}", masked));
  return cells;
}

void printSummaries(Session& session, const Sheet& sheet, bool masked) {
  std::vector<Table::Column> columns;
  for (const std::string& name : sheet.columns) columns.push_back({name, true});
  columns.insert(columns.end(), {{"all_db", true}, {"loudest_db", true}, {"in_band", true}});
  if (masked) columns.push_back({"masked", true});
  Table table(columns);
  for (const Sheet::Row& row : sheet.rows) {
    std::vector<std::string> cells;
    for (const Json& cell : row.cells) cells.push_back(cellText(cell));
    for (std::string& cell : summaryOf(sheet, row)) cells.push_back(std::move(cell));
    table.add(std::move(cells));
  }
  table.print(session);
}

void plot(Session& session, const Sheet& sheet, const ShowChoice& choice) {
  if (sheet.ofBand != "level_db")
    throw Failure(fmt::format("{}: no levels", aq::escaped(choice.file)));
  if (sheet.rows.empty())
    throw Failure(fmt::format("{}: has none of the records asked for", aq::escaped(choice.file)));
  if (choice.spectrogram) return plotSpectrogram(session, sheet);
  if (sheet.rows.size() == 1) return plotSpectrum(session, sheet, sheet.rows.front());
  plotHistory(session, sheet);
}

void printTable(Session& session, const Sheet& sheet, const ShowChoice& choice) {
  const bool levels = sheet.ofBand == "level_db";
  if (levels && !choice.levels && choice.bands.empty())
    return printSummaries(session, sheet, !choice.map.empty());
  printBands(session, sheet);
}

void printHeader(Session& session, const Measurement& read) {
  Table table({{"parameter"}, {"value"}});
  const Json header = headerOf(read);
  for (const auto& [key, value] : header.items()) table.add({key, listText(value, ", ")});
  table.print(session);
}

void printJson(Session& session, const Measurement& read, const Sheet& sheet,
               const ShowChoice& choice) {
  Json document = documentOf(choice.file, read, sheet);
  for (std::size_t i = 0; !choice.map.empty() && i < sheet.rows.size(); ++i) {
    document["rows"][i]["masked"] = sheet.rows[i].masked;
  }
  session.printDocument(document);
}

void print(Session& session, const Measurement& read, Sheet& sheet, const ShowChoice& choice) {
  takeMasks(sheet, read, choice);
  if (session.json) return printJson(session, read, sheet, choice);
  sheet.dropColumns("time_s");
  if (choice.plot || choice.spectrogram) return plot(session, sheet, choice);
  if (sheet.columns.empty()) return printHeader(session, read);
  printTable(session, sheet, choice);
}

void show(Session& session, const ShowChoice& choice) {
  const Measurement read = openFile(choice.file);
  Sheet sheet = sheetOf(read);
  if (!choice.records.empty()) sheet.keepRows(rangeFrom(choice.records, "records"), choice.file);
  if (!choice.bands.empty()) sheet.keepBands(rangeFrom(choice.bands, "bands"), choice.file);
  print(session, read, sheet, choice);
}

void head(Session& session, ShowChoice choice) {
  choice.levels = true;
  for (const std::string& file : session.files) {
    onFile(session, file, [&] {
      choice.file = file;
      session.title(file);
      const Measurement read = openFile(file);
      Sheet sheet = sheetOf(read);
      if (sheet.rows.size() > choice.most) sheet.rows.resize(choice.most);
      print(session, read, sheet, choice);
    });
  }
}

}  // namespace

void addShow(CLI::App& program, Session& session) {
  const auto choice = std::make_shared<ShowChoice>();
  CLI::App* const command = addCommand(
      program, session, "show", "Show the records of a file, as a table or a drawing",
      "--plot draws the spectrum of one record, the level of one band over time, or the\n"
      "overall level over time. Masked levels have a star in tables and are drawn as\n"
      "dots or light bars; a drawing of the overall level leaves them out.\n\n"
      "Examples:\n"
      "  aqdata show fly-over.sth.csv --records 28:32 --bands 20:30 \\\n"
      "    --mask fly-over.mask.csv\n"
      "  aqdata show fly-over.sth.csv --plot --bands 30\n"
      "  aqdata show fly-over.sth.csv --spectrogram\n",
      [&session, choice] { show(session, *choice); });
  addFile(*command, choice->file, "FILE", "The file to show");
  const auto addRange = [&](const char* name, std::string& range, const char* what) {
    command->add_option(name, range, what)->option_text("A:B");
  };
  addRange("--records", choice->records, "Show only these records");
  addRange("--bands", choice->bands, "Show the levels of these bands");
  command->add_flag("--levels", choice->levels, "Show the levels of all bands");
  command->add_option("--mask", choice->map, "Mark the levels that this map masks")
      ->option_text("MAP");
  command->add_flag("--plot", choice->plot, "Draw the levels");
  command->add_flag("--spectrogram", choice->spectrogram, "Draw all levels in colours");
}

void addHead(CLI::App& program, Session& session) {
  const auto choice = std::make_shared<ShowChoice>();
  CLI::App* const command = addCommand(program, session, "head", "Show the first records of files",
                                       "Examples:\n"
                                       "  aqdata head -n 3 fly-over.tspi.csv\n",
                                       [&session, choice] {
                                         session.files = chosenFiles(session);
                                         head(session, *choice);
                                       });
  addFiles(*command, session);
  command->add_option("-n,--lines", choice->most, "The number of records (10)")
      ->check(wholeNumber(0, 32767), "")
      ->option_text("N");
}

}  // namespace aqdata
