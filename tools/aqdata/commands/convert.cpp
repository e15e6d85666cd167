#include "tools/aqdata/convert.h"

#include <aq/core/band_label.h>
#include <aq/core/words.h>
#include <aq/text/number_text.h>
#include <fmt/format.h>

#include <algorithm>
#include <optional>
#include <utility>

#include "tools/aqdata/files.h"
#include "tools/aqdata/program.h"
#include "tools/aqdata/sheet.h"
#include "tools/aqdata/text.h"

namespace aqdata {
namespace {

struct ConvertChoice {
  std::string file;
  std::string to;
  std::optional<std::int16_t> record = {};
  std::uint8_t rt20 = 1;
};

struct Form {
  std::string name;
  std::string_view ending;  // of file names
};
const Form kForms[] = {{"history", ".sth.csv"},  {"columns", ".spc"}, {"positions", ".pth.csv"},
                       {"spectrum", ".ssr.csv"}, {"json", ".json"},   {"table", ".csv"}};

/// The requested form, or the one that the output's name implies.
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

/// One observation per line: each band of a row is one.
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

/// One line per key of the header, for a file that has no rows.
std::vector<std::string> headerLines(const Json& header) {
  std::vector<std::string> lines{"key,value"};
  for (const auto& [key, value] : header.items()) {
    for (const Json& entry : value.is_array() ? value : Json{value}) {
      lines.push_back(key + ',' + cellText(entry));
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

/// A history file names the bands of all its records once.
void expectWhole(const History& read, const std::string& file) {
  const auto fail = [&](std::int32_t record, const std::string& why) {
    throw Failure(fmt::format("{}, record {}: {}, which a history file cannot leave out",
                              aq::escaped(file), record, why));
  };
  const auto& history = *read.model;
  std::optional<std::pair<std::int16_t, std::int16_t>> bands;
  for (const auto& [record, spectrum] : history) {
    if (!bands) bands = {spectrum->LowBand(), spectrum->HighBand()};
    const auto low = std::min(bands->first, spectrum->LowBand());
    for (std::int32_t band = low; band <= std::max(bands->second, spectrum->HighBand()); ++band) {
      if (!spectrum->contains(band)) fail(record, fmt::format("band {} has no level", band));
    }
    if (low < bands->first || spectrum->HighBand() > bands->second) {
      fail(record, "other records have no level in some of its bands");
    }
  }
}

/// A history of any file as one of the two text forms.
void putHistory(Session& session, const ConvertChoice& choice, const Measurement& measurement,
                bool inColumns) {
  const auto* const read = std::get_if<History>(&measurement.data);
  if (read == nullptr) throw Failure("only a history or a recording converts to a history");
  if (choice.record) throw Failure("--record does not apply to a history");
  aq::AQ_SpectralTimeHistory& history = *read->model;
  expectKnownWords(*read, choice.file);
  if (inColumns) {
    aq::AQ_DataSPC file;
    file.RecordLength(read->recordLength);
    file.setHeader(read->header);
    expectGood(file.writeFile(outputPlace(session), history), file);
    if (aq::keepsDates(history)) return;
    return session.tell(fmt::format("{}: the date is that of the start, with midnights from there",
                                    aq::escaped(session.output)));
  }
  expectWhole(*read, choice.file);
  writeOutput<aq::AQ_DataSTH>(session, read->header, history);
  if (history.startTime()->CurrentDate() != 0) {
    session.tell(fmt::format("{}: dates are left out", aq::escaped(session.output)));
  }
  if (read->recordLength != 0.5) {
    session.tell(fmt::format("{}: the record length of {} s is left out",
                             aq::escaped(session.output), read->recordLength));
  }
}

void convert(Session& session, const ConvertChoice& choice) {
  const std::string form = formOf(session, choice);
  const bool asHistory = form == "history" || form == "columns";
  if (session.output.empty() && (asHistory || form == "positions" || form == "spectrum"))
    throw Failure(fmt::format("{} go to a file: -o says which", asHistory            ? "histories"
                                                                : form == "spectrum" ? "spectra"
                                                                                     : form));
  if (form == "positions") {
    if (choice.record) throw Failure("--record does not apply to positions");
    return writePositions(session, openTracking(choice.file, {}, choice.rt20), choice.file);
  }
  const Measurement read = openFile(choice.file, {}, choice.rt20);
  if (form == "spectrum") {
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
  CLI::App* const command =
      addCommand(program, session, "convert", "Write a file in another form",
                 "The name of OUT gives the form: .sth.csv and .spc (histories, with commas and\n"
                 "in fixed columns), .json, .pth.csv (positions), .ssr.csv (one spectrum) or\n"
                 ".csv, a table with one observation per line. With --to it may end in .txt too.\n"
                 "Without OUT, tables and JSON go to standard output.\n\n"
                 "Examples:\n"
                 "  aqdata convert fly-over.sth.csv -o levels.csv\n"
                 "  aqdata convert fly-over.sth.csv --record 30 -o overhead.ssr.csv\n"
                 "  aqdata convert fly-over.sth.csv -o fly-over.spc\n"
                 "  aqdata convert fly-over.tspi.csv -o track.pth.csv\n",
                 [&session, choice] { convert(session, *choice); });
  addFile(*command, choice->file, "FILE", "The file to convert");
  addOutputFile(*command, session, "The file to write", false);
  CLI::Option* const form =
      command
          ->add_option("--to", choice->to, "table, json, history, columns, positions or spectrum")
          ->option_text("FORM");
  addWords(session, *form, {"table", "json", "history", "columns", "positions", "spectrum"});
  command->add_option("--record", choice->record, "Only this record")
      ->check(wholeNumber(-32768, 32767), "")
      ->option_text("N");
  command->add_option("--rt20", choice->rt20, "The highest RT20 figure to accept (1)")
      ->check(wholeNumber(0, 255), "")
      ->option_text("N");
}

}  // namespace aqdata
