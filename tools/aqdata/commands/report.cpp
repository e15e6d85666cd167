#include <aq/check/same_levels.h>
#include <aq/core/platform.h>
#include <aq/text/number_text.h>
#include <fmt/format.h>

#include <algorithm>
#include <filesystem>

#include "tools/aqdata/files.h"
#include "tools/aqdata/noise.h"
#include "tools/aqdata/parallel.h"
#include "tools/aqdata/path.h"
#include "tools/aqdata/program.h"
#include "tools/aqdata/report/page.h"
#include "tools/aqdata/report/run_data.h"
#include "tools/aqdata/text.h"

namespace aqdata {
namespace {

using report::RunChoice;
using report::RunData;

/// A run that could not be read; the page lists it with the reason.
RunData failedRun(const std::string& file, const std::string& why) {
  const std::string name = pathOf(file).filename().string();
  RunData run;
  run.failure = why;
  run.summary = {{"name", name}, {"file", file}, {"failure", why}};
  run.document = run.summary;
  return run;
}

RunData runOf(const std::string& file, const RunChoice& choice) {
  try {
    return report::runData(file, choice);
  } catch (const std::exception& error) {
    return failedRun(file, failureText(file, error));
  }
}

std::string titleOf(const std::vector<std::string>& files) {
  if (files.size() > 1) return counted(files.size(), "run");
  return pathOf(files.front()).filename().string();
}

/// Makes the page, and reports what is wrong with the runs.
std::string pageOf(Session& session, const std::vector<std::string>& files,
                   const RunChoice& choice) {
  report::Page page(titleOf(files));
  Json runs = Json::array();
  std::size_t read = 0;
  aq::SameLevels same;
  inOrder(
      files.size(), session.jobs, [&](std::size_t i) { return runOf(files[i], choice); },
      [&](std::size_t i, RunData& run) {
        session.progress(i + 1, files.size());
        same.see(files[i], run.checked,
                 [&](const aq::Finding& finding) { addFinding(run, files[i], finding); });
        for (const std::string& text : run.complaints) session.complain(text, files[i]);
        if (!run.failure.empty()) session.complain(run.failure, files[i]);
        read += run.failure.empty() ? 1 : 0;
        page.addRun(run.document);
        runs.push_back(std::move(run.summary));
      });
  if (read == 0) throw Failure("nothing was written, because no history could be read");
  return std::move(page).finished({{"runs", std::move(runs)}});
}

void makeReport(Session& session, const RunChoice& choice) {
  const std::vector<std::string> files = chosenHistories(session);
  if (files.empty()) return;
  if (choice.isOfOneRun() && files.size() != 1) {
    throw Failure(
        "--mask, --positions and --geometry name files of a single history; for several, the files "
        "next to them are used");
  }
  expectOutput(session, {".html", ".htm"}, files);
  const std::string place = outputPlace(session);
  const std::string page = pageOf(session, files, choice);
  try {
    aq::platform::replaceFile(place, page);
  } catch (const aq::platform::SystemError& error) {
    throw refusal(place, error);
  }
  constexpr double kMegabyte = 1e6;
  session.wrote(fmt::format("a page of {}, {:.1f} MB", counted(files.size(), "run"),
                            static_cast<double>(page.size()) / kMegabyte));
}

}  // namespace

void addReport(CLI::App& program, Session& session) {
  const auto choice = std::make_shared<RunChoice>();
  CLI::App* const command =
      addCommand(program, session, "report", "Make a page to explore runs in a browser",
                 "The page is a single HTML file that needs no network. Given a folder, uses the\n"
                 "histories in it. For a history x.sth.csv, also uses the files next to it:\n"
                 "x.mask.csv, x.ambient.ssr.csv or x.ssr.csv, x.pth.csv or x.tspi.csv, x.mic.csv\n"
                 "and x.gth.csv. If there are no positions or no microphone, uses those that\n"
                 "x.gth.csv names.\n\n"
                 "Examples:\n"
                 "  aqdata report fly-over.sth.csv --celsius 20 -o fly-over.html\n"
                 "  aqdata report . -o season.html\n",
                 [&session, choice] { makeReport(session, *choice); });
  addFiles(*command, session);
  const auto addName = [&](const char* name, std::string& file, const char* what) {
    command->add_option(name, file, what)->option_text("FILE");
  };
  addName("--mask", choice->map, "Use this masking map");
  addName("--ambient", choice->ambient, "Use this spectrum record as the ambient");
  addName("--positions", choice->positions, "Use these positions or this tracking file");
  addName("--microphone", choice->microphone, "Use this microphone position file");
  addName("--geometry", choice->geometry, "Use this geometric time history");
  command
      ->add_option("--celsius", choice->celsius, "Compute missing geometries for this temperature")
      ->check(finiteNumber, "")
      ->option_text("T");
  command->add_flag("--alone", choice->alone, "Ignore files next to the histories");
  addOutputFile(*command, session, "The page to write");
  addJobs(*command, session);
}

}  // namespace aqdata
