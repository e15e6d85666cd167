#pragma once

#include <aq/core/file_information.h>
#include <aq/core/platform.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <random>
#include <sstream>
#include <string>
#include <vector>

namespace aq::test {

inline const std::filesystem::path kData = AQ_TEST_DATA;

/// The content of a file. If it is text (without a zero byte), the system's line endings become \n,
/// as in the samples.
inline std::string contentOf(const std::filesystem::path& file) {
  std::ifstream stream(file, std::ios::binary);
  std::string content{std::istreambuf_iterator<char>(stream), {}};
  if (platform::lineEnd == "\n" || content.find('\0') != content.npos) return content;
  for (std::size_t at = 0; (at = content.find(platform::lineEnd, at)) != content.npos; ++at) {
    content.replace(at, platform::lineEnd.size(), "\n");
  }
  return content;
}

/// A temporary folder, removed with the object.
class Folder {
 public:
  Folder() {
    std::random_device random;
    do {
      path_ = std::filesystem::temp_directory_path() / ("aq-test-" + std::to_string(random()));
    } while (!std::filesystem::create_directory(path_));
  }
  Folder(const Folder&) = delete;
  Folder& operator=(const Folder&) = delete;
  ~Folder() {
    std::error_code left;
    std::filesystem::remove_all(path_, left);
  }

  [[nodiscard]] std::string file(const std::string& name) const { return (path_ / name).string(); }

  [[nodiscard]] std::string with(const std::string& name, const std::string& content) const {
    std::ofstream(file(name), std::ios::binary) << content;
    return file(name);
  }

 private:
  std::filesystem::path path_;
};

/// A file information service with fixed dates, in use while the object exists.
class FixedInformation {
 public:
  FixedInformation() { setFileInformation(std::make_shared<Service>()); }
  FixedInformation(const FixedInformation&) = delete;
  FixedInformation& operator=(const FixedInformation&) = delete;
  ~FixedInformation() { setFileInformation(nullptr); }

 private:
  struct Service : FileInformation {
    std::string recordedName(const std::string& path) override {
      return std::filesystem::path(path).filename().string();
    }
    std::string fileDateTime(const std::string&) override { return "03/14/2004,07:05:09"; }
    std::string currentDateTime() override { return "03/15/2004,14:02:37"; }
  };
};

inline std::vector<std::string> linesOf(const std::string& text) {
  std::vector<std::string> lines;
  std::istringstream stream(text);
  for (std::string line; std::getline(stream, line);) lines.push_back(line);
  return lines;
}

inline std::string textOf(const std::vector<std::string>& lines) {
  std::string text;
  for (const std::string& line : lines) text += line + '\n';
  return text;
}

}  // namespace aq::test
