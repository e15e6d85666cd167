#include <fmt/format.h>

#include "tools/aqdata/program.h"

namespace aqdata {
namespace {

/// Calls `visit(names, description)` for every option of a command, names with their dashes.
template <class Visit>
void forOptions(const CLI::App& command, const Visit& visit) {
  for (const CLI::Option* option : command.get_options()) {
    std::vector<std::string> names;
    for (const std::string& name : option->get_snames()) names.push_back("-" + name);
    for (const std::string& name : option->get_lnames()) names.push_back("--" + name);
    if (!names.empty()) visit(names, option->get_description());
  }
}

std::string optionsOf(const CLI::App& command) {
  std::string text;
  forOptions(command, [&](const auto& names, const auto&) {
    text += fmt::format("{}{}", text.empty() ? "" : " ", fmt::join(names, " "));
  });
  return text;
}

/// In single quotes of a shell.
std::string quoted(const std::string& text) {
  std::string result = "'";
  for (const char c : text) result += c == '\'' ? std::string("'\\''") : std::string(1, c);
  return result + '\'';
}

std::string bash(CLI::App& program) {
  std::string names;
  std::string cases;
  for (const CLI::App* command : commandsOf(program)) {
    names += command->get_name() + ' ';
    cases += fmt::format("    {}) words={} ;;\n", command->get_name(), quoted(optionsOf(*command)));
  }
  return fmt::format(
      "_aqdata() {{\n"
      "  local current=${{COMP_WORDS[COMP_CWORD]}} words=\n"
      "  if [ \"$COMP_CWORD\" -eq 1 ]; then\n"
      "    COMPREPLY=($(compgen -W {} -- \"$current\"))\n"
      "    return\n"
      "  fi\n"
      "  case ${{COMP_WORDS[1]}} in\n{}  esac\n"
      "  case $current in\n"
      "    -*) COMPREPLY=($(compgen -W \"$words\" -- \"$current\")) ;;\n"
      "  esac\n"
      "}}\n"
      "complete -o default -F _aqdata aqdata\n",
      quoted(names + optionsOf(program)), cases);
}

std::string zsh(CLI::App& program) {
  std::string commands;
  std::string cases;
  for (const CLI::App* command : commandsOf(program)) {
    commands +=
        fmt::format("    {}\n", quoted(command->get_name() + ':' + command->get_description()));
    cases += fmt::format("    {}) options=({}) ;;\n", command->get_name(), optionsOf(*command));
  }
  return fmt::format(
      "#compdef aqdata\n"
      "_aqdata() {{\n"
      "  local -a commands options\n"
      "  commands=(\n{}  )\n"
      "  if (( CURRENT == 2 )); then\n"
      "    _describe command commands\n"
      "    return\n"
      "  fi\n"
      "  case $words[2] in\n{}  esac\n"
      "  if [[ $words[CURRENT] == -* ]]; then\n"
      "    compadd -- $options\n"
      "  else\n"
      "    _files\n"
      "  fi\n"
      "}}\n"
      // Loaded by its name on the first use, or sourced.
      "if [ \"$funcstack[1]\" = _aqdata ]; then\n"
      "  _aqdata \"$@\"\n"
      "else\n"
      "  compdef _aqdata aqdata\n"
      "fi\n",
      commands, cases);
}

std::string fish(CLI::App& program) {
  std::string text;
  for (const CLI::App* command : commandsOf(program)) {
    text += fmt::format("complete -c aqdata -n __fish_use_subcommand -a {} -d {}\n",
                        command->get_name(), quoted(command->get_description()));
    forOptions(*command, [&](const auto& names, const auto& description) {
      text += fmt::format("complete -c aqdata -n {}",
                          quoted("__fish_seen_subcommand_from " + command->get_name()));
      for (const std::string& name : names) {
        const bool isLong = name.starts_with("--");
        text += fmt::format(" {} {}", isLong ? "-l" : "-s", name.substr(isLong ? 2 : 1));
      }
      text += fmt::format(" -d {}\n", quoted(description));
    });
  }
  return text;
}

}  // namespace

void addCompletion(CLI::App& program, Session& session) {
  const auto shell = std::make_shared<std::string>();
  CLI::App* const command = addCommand(program, session, "completion",
                                       "Print what makes a shell complete commands and options",
                                       "Examples:\n"
                                       "  source <(aqdata completion bash)\n",
                                       [&program, &session, shell] {
                                         session.print(*shell == "bash"  ? bash(program)
                                                       : *shell == "zsh" ? zsh(program)
                                                                         : fish(program));
                                       });
  command->add_option("SHELL", *shell, "bash, zsh or fish")
      ->required()
      ->check(CLI::IsMember({"bash", "zsh", "fish"}))
      ->type_name("");
}

}  // namespace aqdata
