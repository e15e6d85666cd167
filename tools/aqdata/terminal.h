#pragma once

#include <cstddef>
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

/// A character of a text: its bytes, and the columns of a terminal that it takes.
struct Character {
  std::size_t bytes;
  std::size_t columns;
};

/// The first character of `text`, which is UTF-8 and not empty; a byte that is none takes a column.
[[nodiscard]] Character firstOf(std::string_view text);

/// Whether `path` is a device, a pipe or one of the program's own streams, as /dev/stdout is
/// wherever it leads.
[[nodiscard]] bool isStream(const std::string& path);

/// From here on a closed pipe ends the program at once and without a word.
void endQuietlyOnClosedPipe();

/// The files and folders that a pattern with `*`, `?` and `[]` stands for, in order.
[[nodiscard]] std::vector<std::string> matches(const std::string& pattern);

}  // namespace aqdata::terminal
