#include "tools/aqdata/program.h"

namespace aqdata {

/// `help X` is rewritten as `X --help` before it is parsed, so this only adds `help` to the list of
/// commands and to completions.
void addHelp(CLI::App& program, Session& session) {
  const auto name = std::make_shared<std::string>();
  CLI::App* const command = addCommand(program, session, "help", "Show the help of a command",
                                       "Examples:\n"
                                       "  aqdata help check\n",
                                       [&program, &session] { session.print(program.help()); });
  std::vector<std::string> names;
  for (const CLI::App* known : commandsOf(program)) names.push_back(known->get_name());
  addWords(session, *command->add_option("COMMAND", *name, "A command")->type_name(""), names);
}

}  // namespace aqdata
