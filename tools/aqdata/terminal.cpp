#include "tools/aqdata/terminal.h"

#include <glob.h>
#include <sys/ioctl.h>
#include <unistd.h>

#include <csignal>
#include <cstdlib>

namespace aqdata::terminal {
namespace {

std::string_view environment(const char* name) {
  const char* const value = std::getenv(name);
  return value == nullptr ? std::string_view() : value;
}

}  // namespace

bool onOutput() { return ::isatty(STDOUT_FILENO) == 1; }
bool onErrors() { return ::isatty(STDERR_FILENO) == 1; }

Colours colours() {
  const std::string_view kind = environment("TERM");
  if (!environment("NO_COLOR").empty() || kind.empty() || kind == "dumb") return Colours::None;
  const std::string_view depth = environment("COLORTERM");
  if (depth == "truecolor" || depth == "24bit" || kind.ends_with("-direct")) return Colours::True;
  return kind.find("256color") == kind.npos ? Colours::Some : Colours::Many256;
}

int width() {
  constexpr int kUsual = 80;
  winsize size{};
  if (::ioctl(STDOUT_FILENO, TIOCGWINSZ, &size) != 0 || size.ws_col == 0) return kUsual;
  return size.ws_col;
}

void endQuietlyOnClosedPipe() { std::signal(SIGPIPE, SIG_DFL); }

std::vector<std::string> matches(const std::string& pattern) {
  glob_t found{};
  std::vector<std::string> paths;
  if (::glob(pattern.c_str(), 0, nullptr, &found) == 0) {
    paths.assign(found.gl_pathv, found.gl_pathv + found.gl_pathc);
  }
  ::globfree(&found);
  return paths;
}

}  // namespace aqdata::terminal
