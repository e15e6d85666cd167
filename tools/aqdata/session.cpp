#include "tools/aqdata/session.h"

#include <aq/core/error.h>
#include <aq/text/number_text.h>
#include <fmt/format.h>

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstdlib>

#include "tools/aqdata/terminal.h"
#include "tools/aqdata/text.h"

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
  // If no signal ends the program, a closed pipe results in EPIPE, which needs no message.
  if (errno != EPIPE) std::fputs("aqdata: cannot write to standard output\n", stderr);
  std::_Exit(kCouldNot);
}

void Session::title(const std::string& file) {
  if (files.size() > 1 && !json) print(strong(fmt::format("==> {} <==", aq::escaped(file))) + '\n');
}

void Session::printDocument(const Json& document) { print(lineOf(document) + '\n'); }

bool Session::intoStream() const { return !output.empty() && terminal::isStream(output); }

void Session::tell(std::string_view text) {
  if (!quiet && !json && !intoStream()) print(fmt::format("{}\n", text));
}

void Session::wrote(std::string_view what) {
  if (json && !intoStream()) return printDocument(Json{{"output", output}});
  tell(fmt::format("{}: {}", aq::escaped(output), what));
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

std::string numberFromZero(const std::string& text) {
  const std::string fault = finiteNumber(text);
  return fault.empty() && text.starts_with('-') ? "expected 0 or more, found " + text : fault;
}

Check wholeNumber(std::int32_t lowest, std::int32_t highest) {
  return [=](const std::string& text) -> std::string {
    try {
      const std::int32_t number = aq::int32From(text);
      if (number >= lowest && number <= highest) return {};
    } catch (const aq::Error&) {
      // reported below
    }
    return fmt::format("expected a whole number from {} to {}, found {}", lowest, highest,
                       aq::shown(text));
  };
}

void addWords(Session& session, CLI::Option& option, std::vector<std::string> words) {
  const auto known = [words](std::string& text) -> std::string {
    for (const std::string& word : words) {
      if (aq::upperCased(word) != aq::upperCased(text)) continue;
      text = word;
      return {};
    }
    constexpr std::size_t kFew = 8;  // as many as fit on a line
    const std::string meant = nearest(text, words);
    const std::string all =
        words.size() > kFew ? "" : fmt::format("expected {}, ", fmt::join(words, ", "));
    return fmt::format("{}{} {}{}", all, all.empty() ? "unknown" : "found", aq::shown(text),
                       meant.empty() ? "" : fmt::format("; did you mean {}?", meant));
  };
  option.transform(CLI::Validator(known, ""));
  session.words[&option] = std::move(words);
}

void addOutputOptions(CLI::App& command, Session& session) {
  command.add_flag("--json", session.json, "Print JSON, one document per file, each on one line");
  command.add_flag("-q,--quiet", session.quiet, "Print only results");
  CLI::Option* const colour =
      command.add_option("--color", session.colour, "Colours: auto, always or never")
          ->option_text("WHEN");
  addWords(session, *colour, {"auto", "always", "never"});
}

void addFiles(CLI::App& command, Session& session) {
  command.add_option("FILES", session.files, "Files, folders (searched), and patterns in quotes")
      ->required()
      ->type_name("");
}

void addFile(CLI::App& command, std::string& file, const char* name, const char* what) {
  command.add_option(name, file, what)->required()->type_name("");
}

void addJobs(CLI::App& command, Session& session) {
  command.add_option("-j,--jobs", session.jobs, "Work on this many files at once (2)")
      ->check(wholeNumber(1, 256), "")
      ->option_text("N");
}

void addOutputFile(CLI::App& command, Session& session, const char* what, bool needed) {
  command.add_option("-o,--output", session.output, what)->required(needed)->option_text("OUT");
  command.add_flag("-f,--force", session.force, "Replace OUT if it exists");
}

}  // namespace aqdata
