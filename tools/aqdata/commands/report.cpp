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

/// A run whose history did not read, which the page names.
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

/// Puts the page together, and tells what the runs have to complain of.
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
  if (read == 0) throw Failure("nothing is written, as no history was read");
  return std::move(page).finished({{"runs", std::move(runs)}});
}

void makeReport(Session& session, const RunChoice& choice) {
  const std::vector<std::string> files = chosenHistories(session);
  if (files.empty()) return;
  if (choice.isOfOneRun() && files.size() != 1) {
    throw Failure(
        "--mask, --positions and --geometry are files of one history; those next to several are "
        "taken by their names");
  }
  expectOutput(session, {".html", ".htm"}, files);
  const std::string place = outputPlace(session);
  const std::string page = pageOf(session, files, choice);
  try {
    aq::platform::replaceFile(place, page);
  } catch (const aq::platform::SystemError& error) {
    throw Failure(
        fmt::format("{}: expected {}, found {}", aq::escaped(place), error.wanted(), error.what()));
  }
  constexpr double kMegabyte = 1e6;
  session.wrote(fmt::format("a page of {}, {:.1f} MB", counted(files.size(), "run"),
                            static_cast<double>(page.size()) / kMegabyte));
}

}  // namespace

void addReport(CLI::App& program, Session& session) {
  const auto choice = std::make_shared<RunChoice>();
  CLI::App* const command = addCommand(
      program, session, "report", "Make a page to look at runs in a browser",
      "The page is one file that needs no network. Of a folder its histories are taken;\n"
      "what goes with x.sth.csv is taken from the files next to it: x.mask.csv,\n"
      "x.ambient.ssr.csv or x.ssr.csv, x.pth.csv or x.tspi.csv, x.mic.csv, x.gth.csv,\n"
      "and the positions and microphone that x.gth.csv names.\n\n"
      "Examples:\n"
      "  aqdata report fly-over.sth.csv --celsius 20 -o fly-over.html\n"
      "  aqdata report . -o season.html\n",
      [&session, choice] { makeReport(session, *choice); });
  addFiles(*command, session);
  const auto addName = [&](const char* name, std::string& file, const char* what) {
    command->add_option(name, file, what)->option_text("FILE");
  };
  addName("--mask", choice->map, "The masking map of the history");
  addName("--ambient", choice->ambient, "The ambient, a spectrum record");
  addName("--positions", choice->positions, "The positions, or a tracking file");
  addName("--microphone", choice->microphone, "The microphone position file");
  addName("--geometry", choice->geometry, "The geometric time history");
  command
      ->add_option("--celsius", choice->celsius, "Compute a missing geometry for this temperature")
      ->check(finiteNumber, "")
      ->option_text("T");
  command->add_flag("--alone", choice->alone, "Take nothing that is next to the histories");
  addOutputFile(*command, session, "The page to write");
  addJobs(*command, session);
}

}  // namespace aqdata
