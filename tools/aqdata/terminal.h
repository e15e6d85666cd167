#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

// What `aqdata` does differently on each operating system: terminal, streams, arguments, file name
// patterns, and running other programs.
namespace aqdata::terminal {

/// How many colours the terminal on standard output can show.
enum class Colours { None, Some, Many256, True };

[[nodiscard]] bool onOutput();
[[nodiscard]] bool onErrors();

/// The colours that the environment allows, taking `NO_COLOR` into account.
[[nodiscard]] Colours colours();

/// The columns of the terminal on standard output; 80 without a terminal.
[[nodiscard]] int width();

/// A character of text: its bytes, and the terminal columns that it takes.
struct Character {
  std::size_t bytes;
  std::size_t columns;
};

/// The first character of `text`, which is UTF-8 and not empty; an invalid byte takes one column.
[[nodiscard]] Character firstOf(std::string_view text);

/// Whether `path` is a device, a pipe or one of the program's own streams; /dev/stdout and
/// /dev/stderr count as such on every system.
[[nodiscard]] bool isStream(const std::string& path);

/// Sets up the streams: a closed pipe ends the program silently, if the system supports that.
/// Returns the arguments, as UTF-8 if the system knows their encoding.
[[nodiscard]] std::vector<std::string> begin(int count, char** words);

/// The files and folders that match a pattern with `*`, `?` and `[]`, sorted by path.
[[nodiscard]] std::vector<std::string> matches(const std::string& pattern);

/// Runs the program that the first word names, found as the shell would, with the other words as
/// arguments and with this program's streams. Returns its exit status (128 plus the number of a
/// signal that ended it), or nothing if it cannot be run.
[[nodiscard]] std::optional<int> run(const std::vector<std::string>& words);

}  // namespace aqdata::terminal
