#pragma once

#include <aq/core/file_information.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <sstream>
#include <string>
#include <vector>

namespace aq::test {

inline const std::filesystem::path kData = AQ_TEST_DATA;

inline std::string contentOf(const std::filesystem::path& file) {
  std::ifstream stream(file, std::ios::binary);
  return {std::istreambuf_iterator<char>(stream), {}};
}

/// A temporary folder, removed with the object.
class Folder {
 public:
  Folder() {
    std::string name = (std::filesystem::temp_directory_path() / "aq-test-XXXXXX").string();
    path_ = ::mkdtemp(name.data());
  }
  Folder(const Folder&) = delete;
  Folder& operator=(const Folder&) = delete;
  ~Folder() { std::filesystem::remove_all(path_); }

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
