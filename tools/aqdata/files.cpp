#include "tools/aqdata/files.h"

#include <aq/core/error.h>
#include <aq/files/data_ascii.h>
#include <aq/files/file_kind.h>
#include <aq/text/number_text.h>
#include <fmt/format.h>

#include <algorithm>
#include <filesystem>
#include <unordered_set>

#include "tools/aqdata/terminal.h"

namespace aqdata {
namespace {

namespace fs = std::filesystem;

bool isHidden(const fs::path& path) { return path.filename().string().starts_with('.'); }

bool isMeasurement(const fs::path& path) {
  return aq::upperCased(path.extension().string()) == ".CSV" ||
         aq::kindOfFile(path.string()) != aq::FileKind::Unknown;
}

void complainOf(const std::string& path, std::string_view why, Session& session) {
  session.complain(fmt::format("{}: {}", aq::escaped(path), why), path);
}

/// Goes on behind a folder that cannot be read, and gives whether there was none. Links to folders
/// may lead in a circle, so they are not followed.
bool walk(const fs::path& folder, Session& session, std::vector<std::string>& files) {
  std::error_code error;
  std::vector<fs::path> entries;
  for (fs::directory_iterator entry(folder, error); !error && entry != fs::directory_iterator();
       entry.increment(error)) {
    if (!isHidden(entry->path())) entries.push_back(entry->path());
  }
  bool whole = !error;
  if (error) complainOf(folder.string(), error.message(), session);
  std::sort(entries.begin(), entries.end());
  for (const fs::path& entry : entries) {
    if (fs::is_directory(fs::symlink_status(entry, error))) {
      whole = walk(entry, session, files) && whole;
    } else if (fs::is_regular_file(entry, error) && isMeasurement(entry)) {
      files.push_back(entry.string());
    }
  }
  return whole;
}

/// Takes what is there under a name: a file, or those of a folder; gives whether it is a folder
/// that was read as a whole.
bool take(const std::string& name, Session& session, std::vector<std::string>& files) {
  std::error_code error;
  if (fs::is_directory(name, error)) return walk(name, session, files);
  onFile(session, name, [&] { expectFile(name), files.push_back(name); });
  return false;
}

void choose(const std::string& given, Session& session, std::vector<std::string>& files) {
  std::error_code error;
  const std::size_t before = files.size();
  if (fs::exists(given, error)) {
    const bool folder = take(given, session, files);
    if (folder && files.size() == before) complainOf(given, "holds no measurement file", session);
    return;
  }
  const auto found = terminal::matches(given);
  for (const std::string& match : found) take(match, session, files);
  if (found.empty()) complainOf(given, "no such file", session);
}

}  // namespace

std::vector<std::string> chosenFiles(Session& session) {
  std::vector<std::string> files;
  for (const std::string& given : session.files) choose(given, session, files);
  std::unordered_set<std::string> seen;
  std::erase_if(files, [&](const std::string& file) {
    return !seen.insert(fs::path(file).lexically_normal().string()).second;
  });
  return files;
}

std::string outputPlace(const Session& session) {
  std::error_code error;
  const bool replaces = !session.intoStream() && fs::is_regular_file(session.output, error);
  if (!replaces || session.force) return session.output;
  throw Failure(
      fmt::format("{}: is there already; --force replaces it", aq::escaped(session.output)));
}

void writeLines(const Session& session, const std::vector<std::string>& lines) {
  aq::AQ_DataASCII file;
  for (const std::string& line : lines) file.Lines()->Add(line);
  expectGood(file.writeLines(outputPlace(session)), file);
}

}  // namespace aqdata
