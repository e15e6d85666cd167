#include "tools/aqdata/files.h"
#include "tools/aqdata/measurement.h"
#include "tools/aqdata/program.h"

namespace aqdata {
namespace {

/// Prints each header line as soon as it is read, so that a damaged file shows the lines before
/// the damage. JSON is printed only if the whole file can be read.
void cat(Session& session, const std::string& path) {
  Json lines = Json::array();
  session.title(path);
  const auto show = [&](const aq::HeaderLine& line) {
    if (session.json) {
      lines.push_back(std::string(line.text));
    } else {
      session.print(std::string(line.text) + '\n');
    }
  };
  static_cast<void>(openFile(path, show));
  if (session.json) session.printDocument(Json{{"file", path}, {"header", std::move(lines)}});
}

}  // namespace

void addCat(CLI::App& program, Session& session) {
  CLI::App* const command =
      addCommand(program, session, "cat", "Print the header of files unchanged",
                 "Examples:\n"
                 "  aqdata cat fly-over.sth.csv\n",
                 [&session] {
                   session.files = chosenFiles(session);
                   for (const std::string& file : session.files) {
                     onFile(session, file, [&] { cat(session, file); });
                   }
                 });
  addFiles(*command, session);
}

}  // namespace aqdata
