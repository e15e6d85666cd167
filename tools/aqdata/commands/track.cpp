#include <aq/check/check_file.h>
#include <fmt/format.h>

#include "tools/aqdata/convert.h"
#include "tools/aqdata/files.h"
#include "tools/aqdata/program.h"

namespace aqdata {
namespace {

struct TrackChoice {
  std::string file;
  std::uint8_t rt20 = 1;
  bool list = false;
};

void track(Session& session, const TrackChoice& choice) {
  if (choice.list && session.intoStream()) {
    throw Failure("--list prints to standard output, so -o must name a file");
  }
  expectOutput(session, {".pth.csv", ".csv"}, {choice.file});
  writePositions(session, openTracking(choice.file, {}, choice.rt20), choice.file);
  if (!choice.list) return;
  aq::checkFixes(choice.file, choice.rt20, [&](const aq::Finding& finding) {
    session.print(fmt::format("{}, line {}: {}\n", aq::escaped(choice.file), finding.place.line,
                              finding.message));
  });
}

}  // namespace

void addTrack(CLI::App& program, Session& session) {
  const auto choice = std::make_shared<TrackChoice>();
  CLI::App* const command =
      addCommand(program, session, "track", "Convert tracking data to a position time history",
                 "Examples:\n"
                 "  aqdata track fly-over.tspi.csv -o fly-over.pth.csv --rt20 1 --list\n",
                 [&session, choice] { track(session, *choice); });
  addFile(*command, choice->file, "TRACKING", "The tracking file");
  addOutputFile(*command, session, "The position file to write");
  command
      ->add_option("--rt20", choice->rt20,
                   "Reject fixes with an RT20 quality figure above this (1)")
      ->check(wholeNumber(0, 255), "")
      ->option_text("N");
  command->add_flag("--list", choice->list, "List the rejected fixes by line");
}

}  // namespace aqdata
