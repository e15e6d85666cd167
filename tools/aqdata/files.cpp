#include "tools/aqdata/files.h"

#include <aq/core/error.h>
#include <aq/core/platform.h>
#include <aq/files/data_ascii.h>
#include <aq/files/file_kind.h>
#include <aq/files/formats.h>
#include <aq/text/number_text.h>
#include <fmt/format.h>

#include <algorithm>
#include <filesystem>
#include <unordered_set>

#include "tools/aqdata/path.h"
#include "tools/aqdata/terminal.h"

namespace aqdata {
namespace {

namespace fs = std::filesystem;

bool isHidden(const fs::path& path) { return path.filename().string().starts_with('.'); }

/// Whether a file found in a folder is a measurement file; originals that `fix` keeps are not.
bool isMeasurement(const fs::path& path) {
  if (path.extension() == ".orig") return false;
  return aq::upperCased(path.extension().string()) == ".CSV" ||
         aq::kindOfFile(path.string()) != aq::FileKind::Unknown;
}

void complainOf(const std::string& path, std::string_view why, Session& session) {
  session.complain(fmt::format("{}: {}", aq::escaped(path), why), path);
}

/// Describes a broken link with its target; empty for anything else.
std::string danglingLink(const fs::path& path) {
  std::error_code error;
  if (!fs::is_symlink(fs::symlink_status(path, error)) || fs::exists(path, error)) return {};
  return "a broken link to " + aq::escaped(fs::read_symlink(path, error).string());
}

/// Finds the files that the user's arguments name. Visits each folder once, since links may form a
/// cycle.
class Choice {
 public:
  Choice(Session& session, const std::vector<std::string_view>& more)
      : session_(session), more_(more) {
    // An output folder below an input is skipped: what an earlier command wrote there is not input.
    std::error_code error;
    const fs::path output = pathOf(session.output);
    const auto isOutput = [&](const std::string& given) {
      return fs::equivalent(pathOf(given), output, error);
    };
    if (fs::is_directory(output, error) &&
        std::none_of(session.files.begin(), session.files.end(), isOutput)) {
      walked_.insert(fs::canonical(output, error).string());
    }
  }

  void add(const std::string& given) {
    std::error_code error;
    if (fs::exists(pathOf(given), error)) return addFound(given);
    const std::string dangling = danglingLink(pathOf(given));
    if (!dangling.empty()) return complainOf(given, dangling, session_);
    const auto found = terminal::matches(given);
    for (const std::string& match : found) addFound(match);
    if (found.empty()) complainOf(given, "no such file", session_);
  }

  [[nodiscard]] std::vector<std::string> files() && { return std::move(files_); }

 private:
  void addFound(const std::string& name) {
    std::error_code error;
    if (!fs::is_directory(pathOf(name), error)) {
      onFile(session_, name, [&] { expectFile(name), addFile(name); });
    } else if (walkNew(name) && !seenMeasurement_) {
      complainOf(name, "contains no measurement files", session_);
    }
  }

  /// Visits a folder, and then the folders that links in it lead to. Returns whether any of them
  /// was new and all could be read.
  bool walkNew(const std::string& folder) {
    seenMeasurement_ = false;
    const std::size_t before = walked_.size();
    bool whole = walk(pathOf(folder));
    while (!links_.empty()) {
      const fs::path link = links_.back();
      links_.pop_back();
      whole = walk(link) && whole;
    }
    return whole && walked_.size() != before;
  }

  /// Continues after a folder that cannot be read; returns whether all could be read.
  bool walk(const fs::path& folder) {
    std::error_code error;
    if (!walked_.insert(fs::canonical(folder, error).string()).second) return true;
    std::vector<fs::path> entries;
    for (fs::directory_iterator entry(folder, error); !error && entry != fs::directory_iterator();
         entry.increment(error)) {
      if (!isHidden(entry->path())) entries.push_back(entry->path());
    }
    bool whole = !error;
    if (error) complainOf(folder.string(), error.message(), session_);
    std::sort(entries.begin(), entries.end());
    for (const fs::path& entry : entries) whole = take(entry) && whole;
    return whole;
  }

  bool take(const fs::path& entry) {
    std::error_code error;
    const std::string dangling = danglingLink(entry);
    if (!dangling.empty()) {
      complainOf(entry.string(), dangling, session_);
    } else if (fs::is_directory(fs::symlink_status(entry, error))) {
      return walk(entry);
    } else if (fs::is_directory(entry, error)) {
      links_.insert(links_.begin(), entry);  // to be visited after the folders themselves
    } else if (fs::is_regular_file(entry, error) && isWanted(entry)) {
      seenMeasurement_ = true;
      addFile(entry.string());
    }
    return true;
  }

  [[nodiscard]] bool isWanted(const fs::path& entry) const {
    const std::string name = aq::upperCased(entry.filename().string());
    return std::any_of(more_.begin(), more_.end(),
                       [&](std::string_view ending) { return name.ends_with(ending); }) ||
           isMeasurement(entry);
  }

  void addFile(const std::string& file) {
    if (seen_.insert(pathOf(file).lexically_normal().string()).second) files_.push_back(file);
  }

  Session& session_;
  const std::vector<std::string_view>& more_;
  std::vector<std::string> files_;
  std::unordered_set<std::string> seen_;
  std::unordered_set<std::string> walked_;
  std::vector<fs::path> links_;  // links to folders; the last one is visited next
  bool seenMeasurement_ = false;
};

/// Whether `name` has this ending. A name with the ending of a particular format does not count as
/// ending in ".csv".
bool mayEnd(const std::string& name, std::string_view ending) {
  const auto endsIn = [upper = aq::upperCased(name)](std::string_view end) {
    return upper.ends_with(aq::upperCased(end));
  };
  bool isOthers = false;
  aq::forFormats([&](const auto& format) { isOthers = isOthers || endsIn(format.ending); });
  return endsIn(ending) && (ending != ".csv" || !isOthers);
}

}  // namespace

std::vector<std::string> chosenFiles(Session& session, const std::vector<std::string_view>& more) {
  Choice choice(session, more);
  for (const std::string& given : session.files) choice.add(given);
  return std::move(choice).files();
}

Failure refusal(const std::string& path, const aq::platform::SystemError& error) {
  return Failure(
      aq::FileFailure{.file = path, .expected = error.wanted(), .found = error.what()}.message());
}

void expectOpens(const std::string& path) {
  try {
    const aq::platform::InputFile file(path);
  } catch (const aq::platform::SystemError& error) {
    throw refusal(path, error);
  }
}

void expectEnding(const std::string& path, const std::vector<std::string_view>& endings) {
  const std::string name = pathOf(path).filename().string();
  const bool fits = pathOf(path).extension().empty() ||
                    std::any_of(endings.begin(), endings.end(),
                                [&](std::string_view ending) { return mayEnd(name, ending); });
  if (fits) return;
  throw Failure(fmt::format("{}: expected a name that ends in {}", aq::escaped(path),
                            fmt::join(endings, ", ")));
}

void expectOutput(const Session& session, const std::vector<std::string_view>& endings,
                  const std::vector<std::string>& inputs) {
  if (session.output.empty() || session.intoStream()) return;
  expectEnding(session.output, endings);
  std::error_code error;
  for (const std::string& input : inputs) {
    if (!fs::equivalent(pathOf(session.output), pathOf(input), error)) continue;
    throw Failure(fmt::format("{}: is an input; the output is of another kind and would replace it",
                              aq::escaped(session.output)));
  }
}

void expectNoInput(const std::string& path, const std::vector<std::string>& inputs) {
  std::error_code error;
  for (const std::string& input : inputs) {
    if (!fs::equivalent(pathOf(path), pathOf(input), error)) continue;
    throw Failure(fmt::format("{}: is an input, which is never overwritten", aq::escaped(path)));
  }
}

void expectFree(const Session& session, const std::string& path) {
  std::error_code error;
  const bool replaces = !terminal::isStream(path) && fs::is_regular_file(pathOf(path), error);
  if (!replaces || session.force) return;
  throw Failure(fmt::format("{}: already exists; --force replaces it", aq::escaped(path)));
}

std::string outputPlace(const Session& session) {
  expectFree(session, session.output);
  return session.output;
}

OutputPlaces::OutputPlaces(const Session& session) : session_(session) {
  std::error_code error;
  const fs::path output = pathOf(session.output);
  const auto isFile = [&error](const fs::path& file) {
    return fs::exists(file, error) && !fs::is_directory(file, error);
  };
  inFolder_ = session.files.size() != 1 || !isFile(pathOf(session.files.front())) ||
              fs::is_directory(output, error) || (!output.empty() && !output.has_filename());
  if (!inFolder_ || !isFile(output)) return;
  throw Failure(fmt::format("{}: expected a folder for several files, found a file",
                            aq::escaped(session.output)));
}

std::string OutputPlaces::of(const std::string& file) {
  if (!inFolder_) return session_.output;
  std::error_code error;
  fs::path below = pathOf(file).filename();
  for (const std::string& given : session_.files) {
    if (!fs::is_directory(pathOf(given), error)) continue;
    const fs::path relative =
        pathOf(file).lexically_normal().lexically_relative(pathOf(given).lexically_normal());
    if (relative.empty() || *relative.begin() == "..") continue;
    below = relative;
    break;
  }
  const fs::path place = pathOf(session_.output) / below;
  const auto [at, isNew] = taken_.emplace(place.string(), file);
  if (!isNew && at->second != file) {
    throw Failure(fmt::format("{}: {} and {} would both be written to this file",
                              aq::escaped(place.string()), aq::escaped(at->second),
                              aq::escaped(file)));
  }
  fs::create_directories(place.parent_path(), error);
  if (error) {
    throw Failure(fmt::format("cannot create the folder {}: {}",
                              aq::escaped(place.parent_path().string()), error.message()));
  }
  return place.string();
}

void writeLines(const Session& session, const std::vector<std::string>& lines) {
  aq::AQ_DataASCII file;
  for (const std::string& line : lines) file.Lines()->Add(line);
  expectGood(file.writeLines(outputPlace(session)), file);
}

}  // namespace aqdata
