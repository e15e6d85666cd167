#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

// Everything in `aqdata` that differs between operating systems: terminal, streams and file name
// patterns.
namespace aqdata::terminal {

/// How many colours the terminal on standard output can show.
enum class Colours { None, Some, Many256, True };

[[nodiscard]] bool onOutput();
[[nodiscard]] bool onErrors();

/// The colours that the environment allows, taking `NO_COLOR` into account.
[[nodiscard]] Colours colours();

/// The columns of the terminal on standard output; 80 without a terminal.
[[nodiscard]] int width();

/// A character of text: its bytes, and the columns of a terminal that it takes.
struct Character {
  std::size_t bytes;
  std::size_t columns;
};

/// The first character of `text`, which is UTF-8 and not empty; an invalid byte takes one column.
[[nodiscard]] Character firstOf(std::string_view text);

/// Whether `path` is a device, a pipe or one of the program's own streams; /dev/stdout always
/// counts as one.
[[nodiscard]] bool isStream(const std::string& path);

/// Sets up the streams: a closed pipe ends the program silently, if the system supports that.
/// Returns the arguments, as UTF-8 if the system knows their encoding.
[[nodiscard]] std::vector<std::string> begin(int count, char** words);

/// The files and folders that match a pattern with `*`, `?` and `[]`, in order.
[[nodiscard]] std::vector<std::string> matches(const std::string& pattern);

/// Runs another program, found as the shell would, with these arguments and this program's streams.
/// Returns its exit status, or nothing if it cannot be run.
[[nodiscard]] std::optional<int> run(const std::vector<std::string>& words);

}  // namespace aqdata::terminal
