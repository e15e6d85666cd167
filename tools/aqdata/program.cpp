#include "tools/aqdata/program.h"

#include <aq/core/error.h>
#include <fmt/format.h>

#include <utility>

#include "tools/aqdata/text.h"

namespace aqdata {
namespace {

constexpr const char* kFooter =
    "Exit status: 0 fine, 1 findings or differences, 2 could not do it.\n"
    "aqdata COMMAND --help says more about a command.";

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

/// What is wrong with a command line.
std::string wrongText(CLI::App& program, const CLI::ParseError& error, int argc, char** argv) {
  const auto chosen = program.get_subcommands();
  if (chosen.empty()) {
    const std::string first = argc > 1 ? argv[1] : "";
    if (first.empty()) return "expected a command; aqdata --help lists them";
    if (first.starts_with('-')) return unknown("option", first, optionNames(program));
    return unknown("command", first, commandNames(program));
  }
  for (const std::string& rest : program.remaining(true)) {
    if (!rest.starts_with('-')) continue;
    return unknown("option", rest.substr(0, rest.find('=')), optionNames(*chosen.front()));
  }
  return fmt::format("{}: {}", chosen.front()->get_name(), error.what());
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
  for (const auto add : {addInfo, addCheck, addShow, addConvert, addTrack, addLgb, addMask,
                         addStamp, addDiff, addCat, addHead, addCompletion, addManual}) {
    add(program, session);
  }
}

std::vector<CLI::App*> commandsOf(CLI::App& program) {
  return program.get_subcommands([](const CLI::App* command) {
    return !command->get_group().empty();  // hidden ones are in no group
  });
}

int run(int argc, char** argv) {
  Session session;
  CLI::App program("Looks at, checks, converts and compares files of aircraft noise measurements.",
                   "aqdata");
  program.require_subcommand(1);
  program.get_formatter()->column_width(24);
  program.get_formatter()->label("SUBCOMMAND", "COMMAND");
  program.set_version_flag("--version", AQDATA_VERSION);
  program.footer(kFooter);
  addCommands(program, session);
  try {
    program.parse(argc, argv);
    session.finish();
    return session.status();
  } catch (const CLI::Success& asked) {
    return program.exit(asked);  // --help and --version
  } catch (const CLI::ParseError& error) {
    session.complain(wrongText(program, error, argc, argv));
    return kCouldNot;
  }
}

}  // namespace aqdata
