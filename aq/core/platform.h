#pragma once

#include <cstddef>
#include <cstdint>
#include <ctime>
#include <optional>
#include <span>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

#include "aq/core/export.h"

// Everything that differs between operating systems: files, their names and dates, large memory
// pages, running programs, local time.
namespace aq::platform {

/// The line ending that this system writes in text files.
extern AQ_API const std::string_view lineEnd;

/// An operating system error; `what()` gives the reason, in English if the system has it.
class AQ_API SystemError : public std::runtime_error {
 public:
  SystemError(const char* wanted, const std::string& reason)
      : std::runtime_error(reason), wanted_(wanted) {}

  /// What was expected, as in "a file that can be opened".
  [[nodiscard]] const char* wanted() const { return wanted_; }

 private:
  const char* wanted_;
};

/// A file open for reading. Opening and reading throw `SystemError` on failure.
class AQ_API InputFile {
 public:
  explicit InputFile(const std::string& path);
  InputFile(const InputFile&) = delete;
  InputFile& operator=(const InputFile&) = delete;
  ~InputFile();

  /// Reads bytes into the start of `buffer` and returns their number; 0 only at the end of the
  /// file.
  [[nodiscard]] std::size_t read(std::span<char> buffer);

 private:
#ifdef _WIN32
  void* handle_;
#else
  int handle_;
#endif
};

/// Replaces the content of a file with `bytes`, completely or not at all: writes a temporary file
/// in the same folder, flushes it to the disk and renames it. Keeps permissions. Follows symbolic
/// links, which remain; other hard links keep the old content. A file that is not regular, such as
/// a pipe, or whose name refers to an open file, such as /dev/stdout, is written directly. Throws
/// `SystemError` on failure; a file that is not written directly is then unchanged.
AQ_API void replaceFile(const std::string& path, std::string_view bytes);

/// Appends `bytes` to a file, which is created if needed. On failure, truncates a regular file to
/// its previous length and throws `SystemError`.
AQ_API void appendToFile(const std::string& path, std::string_view bytes);

/// The size of a large page, in bytes.
inline constexpr std::size_t kLargePage = std::size_t{2} * 1024 * 1024;

/// Asks for large pages for memory that has not been touched yet: the system provides them in a
/// tenth of the time that small pages take. `memory` and `size` are multiples of a large page. Has
/// no effect where large pages are not available.
AQ_API void preferLargePages(void* memory, std::size_t size);

/// The names of the files in a folder, including links to files but not folders, in no particular
/// order. Throws `SystemError` on failure.
[[nodiscard]] AQ_API std::vector<std::string> filesIn(const std::string& folder);

/// Runs a program without a shell and without input, and returns its standard output. Throws
/// `SystemError` if the program cannot be started or does not exit with status 0.
[[nodiscard]] AQ_API std::string outputOf(const std::string& program,
                                          const std::vector<std::string>& arguments);

/// When a file was last changed, in seconds since 1970; nothing if unknown. Not a `std::time_t`,
/// since that overflows in 2038 on some systems.
[[nodiscard]] AQ_API std::optional<std::int64_t> lastChanged(const std::string& path);

/// Whether `path` is a regular file or a link to one; false if unknown.
[[nodiscard]] AQ_API bool isFile(const std::string& path);

/// Whether two paths refer to the same file; false if unknown.
[[nodiscard]] AQ_API bool areOneFile(const std::string& one, const std::string& other);

/// `path` without its folders.
[[nodiscard]] AQ_API std::string fileName(const std::string& path);

/// The local time at `at` seconds since 1970; nothing outside the years 1 (on Windows, 1601)
/// to 9999.
[[nodiscard]] AQ_API std::optional<std::tm> localTime(std::int64_t at);

}  // namespace aq::platform
