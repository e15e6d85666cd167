#pragma once

#include <CLI/CLI.hpp>
#include <string>
#include <vector>

#include "tools/aqdata/session.h"

namespace aqdata {

/// Adds a command. What it does runs when the command line is known to be right; what it throws
/// beyond complaints about single files ends the program.
CLI::App* addCommand(CLI::App& program, Session& session, const char* name, const char* summary,
                     const char* examples, std::function<void()> run);

/// Makes all commands part of the program.
void addCommands(CLI::App& program, Session& session);

/// The commands that users see, in order.
[[nodiscard]] std::vector<CLI::App*> commandsOf(CLI::App& program);

/// Runs the program; gives its exit status.
[[nodiscard]] int run(int argc, char** argv);

}  // namespace aqdata
