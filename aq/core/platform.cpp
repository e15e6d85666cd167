#include "aq/core/platform.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>

namespace aq::platform {
namespace {

std::string reasonOf(int error) {
#ifdef __GLIBC__
  const char* const text = strerrordesc_np(error);  // never translated
  return text != nullptr ? text : "error " + std::to_string(error);
#else
  return std::strerror(error);
#endif
}

int openFile(const std::string& path, int flags, const char* wanted) {
  constexpr mode_t kMode = S_IRUSR | S_IWUSR | S_IRGRP | S_IWGRP | S_IROTH | S_IWOTH;
  if (path.find('\0') != std::string::npos) throw SystemError(wanted, reasonOf(EINVAL));
  for (;;) {
    const int handle = ::open(path.c_str(), flags | O_CLOEXEC, kMode);
    if (handle >= 0) return handle;
    if (errno != EINTR) throw SystemError(wanted, reasonOf(errno));
  }
}

constexpr const char* kWrite = "a file that can be written";

void writeAll(int handle, std::string_view bytes) {
  while (!bytes.empty()) {
    const ssize_t written = ::write(handle, bytes.data(), bytes.size());
    if (written < 0 && errno == EINTR) continue;
    if (written < 0) throw SystemError(kWrite, reasonOf(errno));
    bytes.remove_prefix(static_cast<std::size_t>(written));
  }
}

void write(const std::string& path, int flags, std::string_view bytes) {
  const int handle = openFile(path, O_WRONLY | O_CREAT | flags, kWrite);
  try {
    writeAll(handle, bytes);
  } catch (...) {
    ::close(handle);
    throw;
  }
  if (::close(handle) != 0) throw SystemError(kWrite, reasonOf(errno));
}

}  // namespace

const std::string_view lineEnd = "\n";

InputFile::InputFile(const std::string& path)
    : handle_(openFile(path, O_RDONLY, "a file that can be opened")) {}

InputFile::~InputFile() { ::close(handle_); }

std::size_t InputFile::read(std::span<char> room) {
  for (;;) {
    const ssize_t got = ::read(handle_, room.data(), room.size());
    if (got >= 0) return static_cast<std::size_t>(got);
    if (errno != EINTR) throw SystemError("a file that can be read", reasonOf(errno));
  }
}

void replaceFile(const std::string& path, std::string_view bytes) { write(path, O_TRUNC, bytes); }

void appendToFile(const std::string& path, std::string_view bytes) { write(path, O_APPEND, bytes); }

std::optional<std::time_t> lastChanged(const std::string& path) {
  struct stat status {};
  if (path.empty() || ::stat(path.c_str(), &status) != 0) return std::nullopt;
  return status.st_mtime;
}

std::string fileName(const std::string& path) { return path.substr(path.find_last_of('/') + 1); }

std::optional<std::tm> localTime(std::time_t at) {
  std::tm local{};
  if (::localtime_r(&at, &local) == nullptr) return std::nullopt;
  if (local.tm_year < 1 - 1900 || local.tm_year > 9999 - 1900) return std::nullopt;
  return local;
}

}  // namespace aq::platform
