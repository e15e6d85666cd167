#include "tools/aqdata/program.h"

#include <aq/core/error.h>
#include <fmt/format.h>

#include <algorithm>
#include <set>
#include <utility>

#include "tools/aqdata/text.h"

namespace aqdata {
namespace {

constexpr const char* kFooter =
    "Exit status: 0 success, 1 findings or differences, 2 failure.\n"
    "aqdata help COMMAND shows the help of a command. --json, --quiet and\n"
    "--color may also precede the command.";

std::vector<std::string> optionNames(const CLI::App& command) {
  std::vector<std::string> names;
  for (const CLI::Option* option : command.get_options()) {
    for (const std::string& name : option->get_lnames()) names.push_back("--" + name);
  }
  return names;
}

std::vector<std::string> commandNames(CLI::App& program) {
  std::vector<std::string> names;
  for (const CLI::App* command : commandsOf(program)) names.push_back(command->get_name());
  return names;
}

std::string unknown(const char* what, const std::string& found,
                    const std::vector<std::string>& names) {
  const std::string meant = nearest(found, names);
  return fmt::format("unknown {} {}{}", what, aq::shown(found),
                     meant.empty() ? "" : fmt::format("; did you mean {}?", meant));
}

/// How many words at the start form an option that commands share, including its value; 0 if none
/// do.
std::size_t sharedOption(const std::vector<std::string>& words) {
  static const std::set<std::string> kFlags{"--json", "-q", "--quiet"};
  static const std::set<std::string> kWithValue{"--color", "-j", "--jobs"};
  if (words.empty()) return 0;
  const std::string name = words.front().substr(0, words.front().find('='));
  if (kFlags.contains(words.front())) return 1;
  if (!kWithValue.contains(name)) return 0;
  return name == words.front() ? std::min<std::size_t>(2, words.size()) : 1;
}

/// Rearranges a command line as the parser expects it: moves shared options from before the command
/// to after it, and turns `help` into --help.
std::vector<std::string> arranged(std::vector<std::string> words) {
  std::vector<std::string> before;
  const auto takeShared = [&] {
    while (const std::size_t count = sharedOption(words)) {
      const auto end = words.begin() + static_cast<std::ptrdiff_t>(count);
      before.insert(before.end(), words.begin(), end);
      words.erase(words.begin(), end);
    }
  };
  takeShared();
  const bool help = !words.empty() && words.front() == "help";
  if (help) {
    words.erase(words.begin());
    takeShared();
  }
  if (help && (words.empty() || !words.front().starts_with('-'))) {
    words.resize(std::min<std::size_t>(1, words.size()));
    words.emplace_back("--help");
  }
  if (words.empty() || words.front().starts_with('-')) return words;
  words.insert(words.begin() + 1, before.begin(), before.end());
  return words;
}

/// Describes what is wrong with a command line.
std::string wrongText(CLI::App& program, const CLI::ParseError& error,
                      const std::vector<std::string>& words) {
  const auto chosen = program.get_subcommands();
  if (chosen.empty()) {
    const std::string first = words.empty() ? "" : words.front();
    if (first.empty()) return "expected a command; aqdata --help lists them";
    if (first.starts_with('-')) return unknown("option", first, optionNames(program));
    return unknown("command", first, commandNames(program));
  }
  for (const std::string& rest : program.remaining(true)) {
    if (!rest.starts_with('-')) continue;
    return unknown("option", rest.substr(0, rest.find('=')), optionNames(*chosen.front()));
  }
  const std::string text = error.what();
  const bool noValue = dynamic_cast<const CLI::ArgumentMismatch*>(&error) != nullptr;
  return fmt::format("{}: {}", chosen.front()->get_name(),
                     noValue && text.starts_with('-')
                         ? text.substr(0, text.find(':')) + ": expected a value"
                         : text);
}

}  // namespace

CLI::App* addCommand(CLI::App& program, Session& session, const char* name, const char* summary,
                     const char* examples, std::function<void()> run) {
  CLI::App* const command = program.add_subcommand(name, summary);
  command->footer(examples);
  command->group("Commands");
  command->final_callback([&session, run = std::move(run)] {
    try {
      run();
    } catch (const std::exception& error) {
      session.complain(error.what());
    }
  });
  return command;
}

void addCommands(CLI::App& program, Session& session) {
  for (const auto add :
       {addInfo, addCheck,    addFix, addShow, addPlot,       addConvert, addTrack,    addLgb,
        addMask, addStamp,    addCut, addJoin, addMetrics,    addExplain, addGeometry, addReport,
        addDiff, addAnalyzer, addCat, addHead, addCompletion, addHelp,    addManual}) {
    add(program, session);
    addOutputOptions(*program.get_subcommands({}).back(), session);
  }
}

std::vector<CLI::App*> commandsOf(CLI::App& program) {
  return program.get_subcommands([](const CLI::App* command) {
    return !command->get_group().empty();  // hidden commands have no group
  });
}

int run(std::vector<std::string> given) {
  Session session;
  CLI::App program("Inspects, checks, converts and compares files of aircraft noise measurements.",
                   "aqdata");
  program.require_subcommand(1);
  program.get_formatter()->column_width(24);
  program.get_formatter()->label("SUBCOMMAND", "COMMAND");
  program.set_version_flag("--version", AQDATA_VERSION);
  program.footer(kFooter);
  addCommands(program, session);
  const std::vector<std::string> words = arranged(std::move(given));
  try {
    program.parse(std::vector<std::string>(words.rbegin(), words.rend()));
    session.finish();
    return session.status();
  } catch (const CLI::Success& asked) {
    const bool ofCommand = !words.empty() && !words.front().starts_with('-');
    if (ofCommand && program.get_subcommands().empty()) {
      session.complain(unknown("command", words.front(), commandNames(program)));
      return kCouldNot;
    }
    return program.exit(asked);  // --help and --version
  } catch (const CLI::ParseError& error) {
    session.complain(wrongText(program, error, words));
    return kCouldNot;
  }
}

}  // namespace aqdata
