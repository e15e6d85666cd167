#define WIN32_LEAN_AND_MEAN
#include <windows.h>
// clang-format off
#include <shellapi.h>  // needs the header above
// clang-format on

#include <process.h>

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstdlib>
#include <cwctype>
#include <filesystem>

#include "tools/aqdata/path.h"
#include "tools/aqdata/terminal.h"

namespace aqdata::terminal {
namespace {

namespace fs = std::filesystem;

std::string_view environment(const char* name) {
  const char* const value = std::getenv(name);
  return value == nullptr ? std::string_view() : value;
}

std::string utf8(std::wstring_view text) {
  const int size = static_cast<int>(text.size());
  const auto convert = [&](char* to, int room) {
    return ::WideCharToMultiByte(CP_UTF8, 0, text.data(), size, to, room, nullptr, nullptr);
  };
  std::string bytes(static_cast<std::size_t>(convert(nullptr, 0)), '\0');
  convert(bytes.data(), static_cast<int>(bytes.size()));
  return bytes;
}

wchar_t upper(wchar_t letter) { return static_cast<wchar_t>(std::towupper(letter)); }

/// Whether the stream is a console that accepts escape sequences; turns them on.
bool isConsole(DWORD stream) {
  const HANDLE handle = ::GetStdHandle(stream);
  DWORD mode = 0;
  return ::GetConsoleMode(handle, &mode) != 0 &&
         ::SetConsoleMode(handle, mode | ENABLE_VIRTUAL_TERMINAL_PROCESSING) != 0;
}

UINT codePageBefore = 0;

/// A command-line argument in quotes, with any quotes within it escaped.
std::wstring inQuotes(std::wstring_view word) {
  std::wstring text = L"\"";
  std::size_t slashes = 0;  // backslashes just before `letter`; doubled before a quote
  for (const wchar_t letter : word) {
    if (letter == L'"') text.append(slashes + 1, L'\\');
    slashes = letter == L'\\' ? slashes + 1 : 0;
    text += letter;
  }
  return text.append(slashes, L'\\') + L'"';
}

/// Whether a set such as `[a-z]` or `[!a-z]`, given without brackets, contains `letter` in either
/// case.
bool has(std::wstring_view set, wchar_t letter) {
  const bool others = set.starts_with(L'!');
  if (others) set.remove_prefix(1);
  bool found = false;
  while (!set.empty()) {
    const bool range = set.size() > 2 && set[1] == L'-';
    found |= upper(letter) >= upper(set.front()) && upper(letter) <= upper(set[range ? 2 : 0]);
    set.remove_prefix(range ? 3 : 1);
  }
  return found != others;
}

bool fits(std::wstring_view name, std::wstring_view pattern) {
  if (pattern.empty()) return name.empty();
  if (pattern.front() == L'*') {
    return fits(name, pattern.substr(1)) || (!name.empty() && fits(name.substr(1), pattern));
  }
  if (name.empty()) return false;
  const std::size_t end = pattern.front() == L'[' ? pattern.find(L']', 2) : pattern.npos;
  if (end != pattern.npos) {
    return has(pattern.substr(1, end - 1), name.front()) &&
           fits(name.substr(1), pattern.substr(end + 1));
  }
  const bool same = pattern.front() == L'?' || upper(pattern.front()) == upper(name.front());
  return same && fits(name.substr(1), pattern.substr(1));
}

/// Adds the entries of a folder that match `part`, a pattern for one level of a path; an empty
/// `folder` means the working folder.
void addMatches(const fs::path& folder, const fs::path& part, std::vector<fs::path>& found) {
  std::error_code error;
  const std::wstring& pattern = part.native();
  if (pattern.find_first_of(L"*?[") == pattern.npos) {
    if (fs::exists(folder / part, error)) found.push_back(folder / part);
    return;
  }
  for (fs::directory_iterator entry(folder.empty() ? fs::path(".") : folder, error);
       !error && entry != fs::directory_iterator(); entry.increment(error)) {
    const fs::path name = entry->path().filename();
    const bool hidden = name.native().starts_with(L'.') && !pattern.starts_with(L'.');
    if (!hidden && fits(name.native(), pattern)) found.push_back(folder / name);
  }
}

}  // namespace

bool onOutput() { return isConsole(STD_OUTPUT_HANDLE); }
bool onErrors() { return isConsole(STD_ERROR_HANDLE); }

Colours colours() {
  if (!environment("NO_COLOR").empty() || environment("TERM") == "dumb") return Colours::None;
  return onOutput() ? Colours::True : Colours::None;
}

int width() {
  constexpr int kUsual = 80;
  CONSOLE_SCREEN_BUFFER_INFO information{};
  if (::GetConsoleScreenBufferInfo(::GetStdHandle(STD_OUTPUT_HANDLE), &information) == 0) {
    return kUsual;
  }
  return information.srWindow.Right - information.srWindow.Left + 1;
}

Character firstOf(std::string_view text) {
  const auto lead = static_cast<unsigned char>(text.front());
  if (lead < 0x80) return {1, 1};
  const std::size_t bytes = lead >= 0xF0 ? 4 : lead >= 0xE0 ? 3 : 2;
  std::array<wchar_t, 2> units{};
  const int count = text.size() < bytes
                        ? 0
                        : ::MultiByteToWideChar(CP_UTF8, MB_ERR_INVALID_CHARS, text.data(),
                                                static_cast<int>(bytes), units.data(), 2);
  if (count == 0) return {1, 1};
  WORD kind = 0;
  if (count == 2 || ::GetStringTypeW(CT_CTYPE3, units.data(), 1, &kind) == 0) return {bytes, 2};
  if ((kind & C3_NONSPACING) != 0) return {bytes, 0};
  const bool wide = (kind & (C3_FULLWIDTH | C3_IDEOGRAPH | C3_HIRAGANA | C3_KATAKANA)) != 0 &&
                    (kind & C3_HALFWIDTH) == 0;
  return {bytes, wide ? 2U : 1U};
}

bool isStream(const std::string& path) {
  std::wstring name = pathOf(path).native();
  std::transform(name.begin(), name.end(), name.begin(), upper);
  return path == "/dev/stdout" || path == "/dev/stderr" || name == L"NUL" || name == L"CON" ||
         name == L"CONOUT$" || name.starts_with(L"\\\\.\\");
}

std::vector<std::string> begin(int /*count*/, char** /*words*/) {
  codePageBefore = ::GetConsoleOutputCP();
  if (codePageBefore != 0 && ::SetConsoleOutputCP(CP_UTF8) != 0) {
    std::atexit([] { ::SetConsoleOutputCP(codePageBefore); });
  }
  int count = 0;
  wchar_t** const words = ::CommandLineToArgvW(::GetCommandLineW(), &count);
  std::vector<std::string> arguments;
  for (int i = 1; i < count; ++i) arguments.push_back(utf8(words[i]));
  ::LocalFree(words);
  return arguments;
}

std::vector<std::string> matches(const std::string& pattern) {
  const fs::path whole = pathOf(pattern);
  std::vector<fs::path> found{whole.root_path()};
  for (const fs::path& part : whole.relative_path()) {
    std::vector<fs::path> next;
    for (const fs::path& folder : found) addMatches(folder, part, next);
    found = std::move(next);
  }
  std::sort(found.begin(), found.end());
  std::vector<std::string> paths;
  for (const fs::path& path : found) paths.push_back(path.string());
  return paths;
}

std::optional<int> run(const std::vector<std::string>& words) {
  std::vector<std::wstring> own;
  for (const std::string& word : words) own.push_back(inQuotes(pathOf(word).native()));
  std::vector<const wchar_t*> arguments;
  for (const std::wstring& word : own) arguments.push_back(word.c_str());
  arguments.push_back(nullptr);
  const std::wstring program = pathOf(words.front()).native();
  const std::intptr_t status = ::_wspawnvp(_P_WAIT, program.c_str(), arguments.data());
  if (status < 0) return std::nullopt;
  return static_cast<int>(status);
}

}  // namespace aqdata::terminal
