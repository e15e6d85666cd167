#include "tools/aqdata/session.h"

#include <aq/core/error.h>
#include <aq/text/number_text.h>
#include <fmt/format.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>

#include "tools/aqdata/terminal.h"

namespace aqdata {

void Session::end(Status status) { status_ = std::max<int>(status_, status); }

void Session::print(std::string_view text) {
  clearProgress();
  if (std::fwrite(text.data(), 1, text.size(), stdout) != text.size()) failOutput();
}

void Session::finish() {
  if (std::fflush(stdout) != 0) failOutput();
}

void Session::failOutput() {
  std::fputs("aqdata: cannot write to standard output\n", stderr);
  std::_Exit(kCouldNot);
}

void Session::title(const std::string& file) {
  if (files.size() > 1 && !json) print(strong(fmt::format("==> {} <==", aq::escaped(file))) + '\n');
}

void Session::printDocument(const Json& document) { print(lineOf(document) + '\n'); }

void Session::tell(std::string_view text) {
  if (!quiet && !json && !intoStream()) print(fmt::format("{}\n", text));
}

void Session::complain(std::string_view text, const std::string& file) {
  end(kCouldNot);
  clearProgress();
  if (json)
    printDocument(file.empty() ? Json{{"error", text}} : Json{{"file", file}, {"error", text}});
  std::fflush(stdout);
  fmt::print(stderr, "aqdata: {}\n", text);
}

void Session::progress(std::size_t done, std::size_t total) {
  constexpr std::size_t kWorthShowing = 50;
  constexpr std::size_t kBar = 40;
  if (quiet || total < kWorthShowing || !terminal::onErrors()) return;
  const std::size_t hundredths = done * 100 / total;
  if (hundredths == shown_ && progressing_) return;
  shown_ = hundredths;
  if (done == total) return clearProgress();
  progressing_ = true;
  const std::size_t full = done * kBar / total;
  fmt::print(stderr, "\r[{:=<{}}{: <{}}] {} of {}", "", full, "", kBar - full, done, total);
}

void Session::clearProgress() {
  if (!progressing_) return;
  progressing_ = false;
  std::fputs("\r\x1b[K", stderr);
}

bool Session::colourful() const {
  if (colour != "auto") return colour == "always";
  return terminal::onOutput() && terminal::colours() != terminal::Colours::None;
}

std::string Session::painted(std::string_view code, std::string_view text) const {
  return colourful() ? fmt::format("\x1b[{}m{}\x1b[0m", code, text) : std::string(text);
}

std::string lineOf(const Json& document) {
  return document.dump(-1, ' ', false, Json::error_handler_t::replace);
}

void onFile(Session& session, const std::string& path, const std::function<void()>& work) {
  try {
    work();
  } catch (const std::exception& error) {
    session.complain(failureText(path, error), path);
  }
}

std::string failureText(const std::string& path, const std::exception& error) {
  if (dynamic_cast<const Failure*>(&error) != nullptr) return error.what();
  return fmt::format("{}: {}", aq::escaped(path), error.what());
}

std::string finiteNumber(const std::string& text) {
  try {
    static_cast<void>(aq::doubleFrom(text));
    return {};
  } catch (const aq::Error& error) {
    return error.what();
  }
}

void addOutputOptions(CLI::App& command, Session& session) {
  command.add_flag("--json", session.json, "One JSON document a file, one a line");
  command.add_flag("-q,--quiet", session.quiet, "Nothing but the result itself");
  command.add_option("--color", session.colour, "Colours: auto, always or never")
      ->check(CLI::IsMember({"auto", "always", "never"}))
      ->option_text("WHEN");
}

void addFiles(CLI::App& command, Session& session) {
  command.add_option("FILES", session.files, "Files, folders (walked) and patterns in quotes")
      ->required()
      ->type_name("");
}

void addFile(CLI::App& command, std::string& file, const char* name, const char* what) {
  command.add_option(name, file, what)->required()->type_name("");
}

void addJobs(CLI::App& command, Session& session) {
  command.add_option("-j,--jobs", session.jobs, "Files to work on at once (2)")
      ->check(CLI::Range(1, 256))
      ->option_text("N");
}

void addOutputFile(CLI::App& command, Session& session, const char* what, bool needed) {
  command.add_option("-o,--output", session.output, what)->required(needed)->option_text("OUT");
  command.add_flag("-f,--force", session.force, "Replace OUT if it is there");
}

}  // namespace aqdata
