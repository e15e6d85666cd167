#pragma once

#include <cstddef>
#include <cstdint>
#include <map>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "aq/check/reporter.h"
#include "aq/files/formats.h"
#include "aq/files/history_words.h"
#include "aq/text/header_observer.h"
#include "aq/text/line_reader.h"

namespace aq {

/// Reports the first non-empty field after those that are read, as the digits after a decimal comma
/// or as text that is lost.
void checkFieldsAfterValue(const HeaderLine& line, const Reporter& report);

/// Reports an unknown word in the header, which is read as `readAs`.
void checkWord(std::size_t line, std::string_view word, std::string_view readAs,
               const Reporter& report);

/// Reports a header that names a file other than its own: as a warning if that file is in the same
/// folder, otherwise as a note.
void checkFileName(std::size_t line, std::string_view name, const std::string& path,
                   const Reporter& report);

/// The path of the file with the recorded name in the folder of `path`; empty if it does not exist.
/// Ignores the folders in the recorded name.
std::string sourceBeside(const std::string& path, std::string_view recorded);

/// Checks the header of a file with column headings, and keeps what a check of the data needs.
class HeaderCheck {
 public:
  explicit HeaderCheck(const Reporter& report) : report_(report) {}
  HeaderCheck(const HeaderCheck&) = delete;
  HeaderCheck& operator=(const HeaderCheck&) = delete;
  ~HeaderCheck() = default;

  /// Reads a file with the class `File` and checks its header. If the read fails, reports that and
  /// returns false.
  template <class File, class Header, class Model>
  [[nodiscard]] bool reads(const std::string& path, Content<Header, Model>& content) {
    File file;
    file.observeHeader([this](const HeaderLine& line) { see(line); });
    const AQ_DataMessage result = readContent(file, path, content);
    expectFiles(path);
    if (result == AQ_DATA_OK) return true;
    report_.unreadable(*file.lastFailure());
    return false;
  }

  /// Skips the header in a new pass over the file.
  void passHeader(LineReader& lines) const {
    while (lines.number() < lines_ && lines.next()) continue;
  }

  /// How many lines the header has, including the column headings.
  [[nodiscard]] std::size_t lines() const { return lines_; }

  /// The line of a keyword; 0 if the header does not have it.
  [[nodiscard]] std::size_t lineOf(std::string_view keyword) const;

  /// The value of a keyword; empty if the header does not have it.
  [[nodiscard]] std::string_view valueOf(std::string_view keyword) const;

  /// The two integers that follow a keyword, which the header must have.
  [[nodiscard]] std::pair<std::int16_t, std::int16_t> integersOf(std::string_view keyword) const;

  /// Compares the count that a keyword gives with the actual number.
  void expectCount(std::string_view keyword, std::size_t count, const char* ofWhat) const;

  /// Compares the word of a keyword with the word that it is read as.
  void expectWord(std::string_view keyword, const std::string& readAs) const;

  /// Reports an unknown word for the reference time type, which readers ignore.
  void expectReferenceType() const;

  /// Compares the file's headings with `headings` one by one, ignoring case.
  void expectHeadings(std::string_view headings) const;

  /// Compares the headings from field `first` on with the labels of the bands.
  void expectLabels(std::size_t first, std::int16_t low, std::int16_t high) const;

 private:
  struct Entry {
    std::size_t line;
    std::string value;
  };

  /// Compares the names in the header with the file's own name and with the files in its folder.
  void expectFiles(const std::string& path) const;
  void see(const HeaderLine& line);
  void seeKeyword(const HeaderLine& line, std::string_view found);
  void seeMarks(const HeaderLine& line, const std::vector<std::string_view>& pieces) const;

  const Reporter& report_;
  std::size_t lines_ = 0;
  std::map<std::string, Entry, std::less<>> entries_;
  std::string headings_;
  HistoryWords words_;
  std::size_t quotes_ = 0;  // number of the last line in quotes so far; 0 for none
};

}  // namespace aq
