#include "tools/aqdata/terminal.h"

#include <glob.h>
#include <spawn.h>
#include <sys/ioctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <clocale>
#include <csignal>
#include <cstdlib>
#include <cwchar>
#include <filesystem>

namespace aqdata::terminal {
namespace {

std::string_view environment(const char* name) {
  const char* const value = std::getenv(name);
  return value == nullptr ? std::string_view() : value;
}

/// During its lifetime, selects the system's UTF-8 character tables, whatever the user's locale.
class Utf8 {
 public:
  Utf8() : before_(::uselocale(tables())) {}
  Utf8(const Utf8&) = delete;
  Utf8& operator=(const Utf8&) = delete;
  ~Utf8() { ::uselocale(before_); }

 private:
  static locale_t tables() {
    static const locale_t kTables = ::newlocale(LC_CTYPE_MASK, "C.UTF-8", nullptr);
    return kTables;  // null if the system lacks them: the locale then stays as it is
  }

  locale_t before_;
};

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

Character firstOf(std::string_view text) {
  if (static_cast<unsigned char>(text.front()) < 0x80) return {1, 1};
  const Utf8 tables;
  wchar_t character = 0;
  std::mbstate_t state{};
  const std::size_t bytes = std::mbrtowc(&character, text.data(), text.size(), &state);
  if (bytes == 0 || bytes > text.size()) return {1, 1};
  const int columns = ::wcwidth(character);
  return {bytes, columns < 0 ? 1 : static_cast<std::size_t>(columns)};
}

bool isStream(const std::string& path) {
  namespace fs = std::filesystem;
  std::error_code error;
  if (fs::is_other(fs::status(path, error))) return true;
  const fs::path name = fs::path(path).lexically_normal();
  const fs::path folder = name.parent_path();
  return name == "/dev/stdout" || name == "/dev/stderr" || folder == "/dev/fd" ||
         folder == "/proc/self/fd";
}

std::vector<std::string> begin(int count, char** words) {
  std::signal(SIGPIPE, SIG_DFL);
  return {words + std::min(count, 1), words + count};
}

std::vector<std::string> matches(const std::string& pattern) {
  glob_t found{};
  std::vector<std::string> paths;
  if (::glob(pattern.c_str(), 0, nullptr, &found) == 0) {
    paths.assign(found.gl_pathv, found.gl_pathv + found.gl_pathc);
  }
  ::globfree(&found);
  return paths;
}

std::optional<int> run(const std::vector<std::string>& words) {
  std::vector<std::string> own = words;  // the call requires writable strings
  std::vector<char*> arguments;
  arguments.reserve(own.size() + 1);
  for (std::string& word : own) arguments.push_back(word.data());
  arguments.push_back(nullptr);
  pid_t child = 0;
  if (::posix_spawnp(&child, arguments.front(), nullptr, nullptr, arguments.data(), environ) != 0) {
    return std::nullopt;
  }
  int status = 0;
  while (::waitpid(child, &status, 0) < 0) {
    if (errno != EINTR) return std::nullopt;
  }
  constexpr int kSignalled = 128;  // as shells report it
  return WIFEXITED(status) ? WEXITSTATUS(status) : kSignalled + WTERMSIG(status);
}

}  // namespace aqdata::terminal
