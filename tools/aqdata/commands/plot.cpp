#include <fmt/format.h>

#include "tools/aqdata/files.h"
#include "tools/aqdata/package.h"
#include "tools/aqdata/program.h"

namespace aqdata {
namespace {

void plot(Session& session) {
  const std::vector<std::string> files = chosenFiles(session);
  if (session.status() != kFine) return;
  if (session.intoStream())
    throw Failure("an image cannot go to standard output: name a file with -o");
  expectOutput(session, {".png", ".svg", ".pdf"}, files);
  if (session.output.find('.') == session.output.npos) {
    throw Failure(fmt::format("{}: expected a name that ends in .png, .svg, .pdf",
                              aq::escaped(session.output)));
  }
  std::vector<std::string> words{"plot", outputPlace(session)};
  for (const std::string& file : files) {
    static_cast<void>(openFile(file));  // throws for a file that cannot be read
    words.push_back(file);
  }
  runPackage("an image", words);
  session.wrote("drawn");
}

}  // namespace

void addPlot(CLI::App& program, Session& session) {
  CLI::App* const command = addCommand(
      program, session, "plot", "Draw one run on a page",
      "FILES are the files of one run, at most one of each kind: history, map, ambient,\n"
      "tracking or positions, geometry and microphone. Needs the Python package.\n\n"
      "Examples:\n"
      "  aqdata plot fly-over.sth.csv fly-over.mask.csv -o fly-over.png\n",
      [&session] { plot(session); });
  addFiles(*command, session);
  addOutputFile(*command, session, "The image to write: .png, .svg or .pdf");
}

}  // namespace aqdata
