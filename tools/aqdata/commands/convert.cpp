#include "tools/aqdata/convert.h"

#include <aq/core/band_label.h>
#include <aq/text/number_text.h>
#include <fmt/format.h>

#include <optional>

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
  std::string_view ending;  // of the names of such files
};
const Form kForms[] = {{"positions", ".pth.csv"},
                       {"spectrum", ".ssr.csv"},
                       {"history", ".sth.csv"},
                       {"json", ".json"},
                       {"table", ".csv"}};

/// The form that was asked for, or that the output's name asks for.
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

/// One observation a line: of rows with bands, each band is one.
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

/// A line a key of the header, for a file that has no rows.
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
  if (history == nullptr) throw Failure("a spectrum record is made of a history alone");
  if (!choice.record) throw Failure("which record? --record says it");
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

void putHistory(const Session& session, const ConvertChoice& choice, const Measurement& read) {
  const auto* const history = std::get_if<History>(&read.data);
  if (history == nullptr) throw Failure("a history is made of a history or a recording alone");
  if (choice.record) throw Failure("a history is that of all records");
  writeOutput<aq::AQ_DataSTH>(session, history->header, *history->model);
}

void convert(Session& session, const ConvertChoice& choice) {
  const std::string form = formOf(session, choice);
  if (session.output.empty() && form != "json" && form != "table")
    throw Failure(fmt::format("{} go to a file: -o says which", form == "spectrum"  ? "spectra"
                                                                : form == "history" ? "histories"
                                                                                    : form));
  if (form == "positions") {
    if (choice.record) throw Failure("positions are those of all fixes");
    return writePositions(session, openTracking(choice.file, {}, choice.rt20), choice.file);
  }
  const Measurement read = openFile(choice.file, {}, choice.rt20);
  if (form == "spectrum") {
    putSpectrum(session, choice, read);
  } else if (form == "history") {
    putHistory(session, choice, read);
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
                 "The name of OUT says the form: .json, .pth.csv (positions), .ssr.csv (one\n"
                 "spectrum), .sth.csv (a history) or .csv, a table of one observation a line.\n"
                 "With --to it may end in .txt too. Without OUT, tables and JSON go to standard\n"
                 "output.\n\n"
                 "Examples:\n"
                 "  aqdata convert fly-over.sth.csv -o levels.csv\n"
                 "  aqdata convert fly-over.sth.csv --record 30 -o overhead.ssr.csv\n"
                 "  aqdata convert fly-over.tspi.csv -o track.pth.csv\n",
                 [&session, choice] { convert(session, *choice); });
  addFile(*command, choice->file, "FILE", "The file to convert");
  addOutputFile(*command, session, "The file to write", false);
  CLI::Option* const form =
      command
          ->add_option("--to", choice->to, "The form: table, json, positions, spectrum or history")
          ->option_text("FORM");
  addWords(session, *form, {"table", "json", "positions", "spectrum", "history"});
  command->add_option("--record", choice->record, "One record alone")
      ->check(wholeNumber(-32768, 32767), "")
      ->option_text("N");
  command->add_option("--rt20", choice->rt20, "The highest RT20 figure that is accepted (1)")
      ->check(wholeNumber(0, 255), "")
      ->option_text("N");
}

}  // namespace aqdata
