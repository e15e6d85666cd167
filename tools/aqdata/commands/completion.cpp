#include <fmt/format.h>

#include "tools/aqdata/program.h"

namespace aqdata {
namespace {

/// Calls `visit(names, description)` for every option of a command; `names` include the dashes.
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

/// `text` in a shell's single quotes.
std::string quoted(const std::string& text) {
  std::string result = "'";
  for (const char c : text) result += c == '\'' ? std::string("'\\''") : std::string(1, c);
  return result + '\'';
}

/// Calls `visit(names, words)` for each option or argument that takes words of a fixed set.
/// `names` are the option's long names with their dashes; empty for an argument.
template <class Visit>
void forWords(const CLI::App& command, const Session& session, const Visit& visit) {
  for (const CLI::Option* option : command.get_options()) {
    const auto words = session.words.find(option);
    if (words == session.words.end()) continue;
    std::vector<std::string> names;
    for (const std::string& name : option->get_lnames()) names.push_back("--" + name);
    visit(names, fmt::format("{}", fmt::join(words->second, " ")));
  }
}

/// The branches of a shell's `case` on the command and the word before the one to complete.
std::string wordCases(CLI::App& program, const Session& session, const char* branch) {
  std::string cases;
  std::string arguments;  // branches for arguments; they match any word, so they come last
  for (const CLI::App* command : commandsOf(program)) {
    forWords(*command, session, [&](const auto& names, const std::string& words) {
      const std::string pattern = command->get_name() + ':' + (names.empty() ? "*" : names.front());
      (names.empty() ? arguments : cases) += fmt::format(fmt::runtime(branch), pattern, words);
    });
  }
  return cases + arguments;
}

std::string bash(CLI::App& program, const Session& session) {
  std::string names;
  std::string cases;
  for (const CLI::App* command : commandsOf(program)) {
    names += command->get_name() + ' ';
    cases += fmt::format("    {}) words={} ;;\n", command->get_name(), quoted(optionsOf(*command)));
  }
  return fmt::format(
      "_aqdata() {{\n"
      "  local current=${{COMP_WORDS[COMP_CWORD]}} before=${{COMP_WORDS[COMP_CWORD-1]}}\n"
      "  local command= words= i\n"
      "  for ((i = 1; i < COMP_CWORD; ++i)); do\n"
      "    case ${{COMP_WORDS[i]}} in\n"
      "      --color|-j|--jobs) ((++i)) ;;\n"
      "      -*|=) ;;\n"
      "      *) command=${{COMP_WORDS[i]}}; break ;;\n"
      "    esac\n"
      "  done\n"
      "  [ \"$before\" = = ] && before=${{COMP_WORDS[COMP_CWORD-2]}}\n"  // as in --color=auto
      "  [ \"$current\" = = ] && before=${{COMP_WORDS[COMP_CWORD-1]}} current=\n"
      "  case ${{command:-info}}:$before in\n{}  esac\n"
      "  if [ -z \"$command\" ]; then\n"
      "    COMPREPLY=($(compgen -W {} -- \"$current\"))\n"
      "    return\n"
      "  fi\n"
      "  case $command in\n{}  esac\n"
      "  case $current in\n"
      "    -*) COMPREPLY=($(compgen -W \"$words\" -- \"$current\")) ;;\n"
      "  esac\n"
      "}}\n"
      "complete -o default -F _aqdata aqdata\n",
      wordCases(program, session,
                "    {}) COMPREPLY=($(compgen -W '{}' -- \"$current\")); return ;;\n"),
      quoted(names + optionsOf(program) + " --json --quiet --color"), cases);
}

std::string zsh(CLI::App& program, const Session& session) {
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
      "  local command= i\n"
      "  commands=(\n{}  )\n"
      "  for ((i = 2; i < CURRENT; ++i)); do\n"
      "    case $words[i] in\n"
      "      --color|-j|--jobs) ((++i)) ;;\n"
      "      -*) ;;\n"
      "      *) command=$words[i]; break ;;\n"
      "    esac\n"
      "  done\n"
      "  case ${{command:-info}}:$words[CURRENT-1] in\n{}  esac\n"
      "  if [[ -z $command ]]; then\n"
      "    _describe command commands\n"
      "    return\n"
      "  fi\n"
      "  case $command in\n{}  esac\n"
      "  if [[ $words[CURRENT] == -* ]]; then\n"
      "    compadd -- $options\n"
      "  else\n"
      "    _files\n"
      "  fi\n"
      "}}\n"
      // On first use, the shell may run this script as the function's body: it must then also offer
      // completions. When sourced, the script only registers the function.
      "if [ \"$funcstack[1]\" = _aqdata ]; then\n"
      "  _aqdata \"$@\"\n"
      "else\n"
      "  compdef _aqdata aqdata\n"
      "fi\n",
      commands, wordCases(program, session, "    {}) compadd -- {}; return ;;\n"), cases);
}

/// The part of a fish line that says which command it applies to.
std::string fishLine(const CLI::App& command) {
  return fmt::format("complete -c aqdata -n {}",
                     quoted("__fish_seen_subcommand_from " + command.get_name()));
}

std::string fish(CLI::App& program, const Session& session) {
  std::string text;
  for (const CLI::App* command : commandsOf(program)) {
    text += fmt::format("complete -c aqdata -n __fish_use_subcommand -a {} -d {}\n",
                        command->get_name(), quoted(command->get_description()));
    forOptions(*command, [&](const auto& names, const auto& description) {
      text += fishLine(*command);
      for (const std::string& name : names) {
        const bool isLong = name.starts_with("--");
        text += fmt::format(" {} {}", isLong ? "-l" : "-s", name.substr(isLong ? 2 : 1));
      }
      text += fmt::format(" -d {}\n", quoted(description));
    });
    forWords(*command, session, [&](const auto& names, const std::string& words) {
      const std::string option = names.empty() ? "-f" : "-x -l " + names.front().substr(2);
      text += fmt::format("{} {} -a {}\n", fishLine(*command), option, quoted(words));
    });
  }
  return text;
}

}  // namespace

void addCompletion(CLI::App& program, Session& session) {
  const auto shell = std::make_shared<std::string>();
  CLI::App* const command =
      addCommand(program, session, "completion", "Print a completion script for a shell",
                 "Examples:\n"
                 "  source <(aqdata completion bash)\n",
                 [&program, &session, shell] {
                   session.print(*shell == "bash"  ? bash(program, session)
                                 : *shell == "zsh" ? zsh(program, session)
                                                   : fish(program, session));
                 });
  CLI::Option* const option =
      command->add_option("SHELL", *shell, "bash, zsh or fish")->required()->type_name("");
  addWords(session, *option, {"bash", "zsh", "fish"});
}

}  // namespace aqdata
