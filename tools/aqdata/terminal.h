#pragma once

#include <string>
#include <string_view>
#include <vector>

// All of this program that differs between operating systems: its terminal, its streams and file
// name patterns.
namespace aqdata::terminal {

/// How many colours the terminal on standard output shows.
enum class Colours { None, Some, Many256, True };

[[nodiscard]] bool onOutput();
[[nodiscard]] bool onErrors();

/// What the environment says of a terminal's colours, `NO_COLOR` included.
[[nodiscard]] Colours colours();

/// The columns of the terminal on standard output, 80 where there is none.
[[nodiscard]] int width();

/// From here on a closed pipe ends the program at once and without a word.
void endQuietlyOnClosedPipe();

/// The files and folders that a pattern with `*`, `?` and `[]` stands for, in order.
[[nodiscard]] std::vector<std::string> matches(const std::string& pattern);

}  // namespace aqdata::terminal
