#include "tools/aqdata/measurement.h"
#include "tools/aqdata/program.h"
#include "tools/aqdata/terminal.h"
#include "tools/aqdata/text.h"

namespace aqdata {
namespace {

/// A recording as a line of the table, or the reason why it cannot be read.
Json recordingOf(const std::string& folder, const std::string& name) {
  aq::AQ_DataHP3565 file;
  std::shared_ptr<aq::AQ_HeaderSTH> header;
  std::shared_ptr<aq::AQ_SpectralTimeHistory> history;
  Json line{{"file", name}, {"kind", "recording"}};
  if (file.readFile(folder + '/' + name, header, history) != aq::AQ_DATA_OK) {
    line["failure"] =
        "expected " + file.lastFailure()->expected + ", found " + file.lastFailure()->found;
    return line;
  }
  line["records"] = history->Count();
  line["begin"] = history->startTime()->TODstring();
  line["microphone"] = header->sMicrophoneID;
  line["instrument"] = header->sGeneratedBy;
  line["project"] = header->sProjectName;
  line["notes"] = Json::array();
  for (const std::string& note : *header->cCommentLines) line["notes"].push_back(note);
  return line;
}

void addNames(Json& lines, const aq::Collection<std::string>& names, const char* kind) {
  for (const std::string& name : names) lines.push_back(Json{{"file", name}, {"kind", kind}});
}

void printTable(Session& session, const Json& lines) {
  Table table({{"file"},
               {"kind"},
               {"records", true},
               {"begin"},
               {"microphone"},
               {"instrument", false, true},
               {"project", false, true},
               {"failure", false, true}});
  for (const Json& line : lines) {
    const auto cell = [&](const char* key) {
      return line.contains(key) ? cellText(line[key]) : std::string();
    };
    table.add({aq::escaped(line["file"].get<std::string>()), cell("kind"), cell("records"),
               cell("begin"), aq::escaped(cell("microphone")), cell("instrument"),
               aq::escaped(cell("project")), cell("failure")});
  }
  if (terminal::onOutput()) table.fit(static_cast<std::size_t>(terminal::width()));
  table.print(session);
}

void list(Session& session, const std::string& folder) {
  aq::AQ_DataHP3565 file;
  std::shared_ptr<aq::Collection<std::string>> index, times, recordings;
  expectGood(file.readDirectory(folder, index, times, recordings), file);
  Json lines = Json::array();
  addNames(lines, *index, "index");
  addNames(lines, *times, "times");
  for (const std::string& name : *recordings) {
    lines.push_back(recordingOf(folder, name));
    if (lines.back().contains("failure")) session.end(kFindings);
  }
  if (session.json) {
    session.printDocument(Json{{"folder", folder}, {"files", std::move(lines)}});
  } else {
    printTable(session, lines);
  }
}

}  // namespace

void addAnalyzer(CLI::App& program, Session& session) {
  const auto folder = std::make_shared<std::string>();
  CLI::App* const command =
      addCommand(program, session, "analyzer", "List the recordings in an analyzer's folder",
                 "Examples:\n"
                 "  aqdata analyzer .\n"
                 "  aqdata analyzer --json .\n",
                 [&session, folder] { list(session, *folder); });
  addFile(*command, *folder, "FOLDER", "The folder of the analyzer");
}

}  // namespace aqdata
