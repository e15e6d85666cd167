#pragma once

#include <CLI/CLI.hpp>
#include <string>
#include <vector>

#include "tools/aqdata/session.h"

namespace aqdata {

/// Adds a command. `run` is called if the command line is valid; an exception from it is reported,
/// and the exit status becomes that of a failure.
CLI::App* addCommand(CLI::App& program, Session& session, const char* name, const char* summary,
                     const char* examples, std::function<void()> run);

/// Adds all commands to the program.
void addCommands(CLI::App& program, Session& session);

/// The commands that users see, in the order of the help.
[[nodiscard]] std::vector<CLI::App*> commandsOf(CLI::App& program);

/// Runs the program with these command line arguments and returns its exit status.
[[nodiscard]] int run(std::vector<std::string> given);

}  // namespace aqdata
