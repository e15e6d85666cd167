#include "aq/core/platform.h"

#include <dirent.h>
#include <fcntl.h>
#include <poll.h>
#include <spawn.h>
#include <sys/file.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <charconv>
#include <climits>
#include <csignal>
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

[[noreturn]] void failBy(const char* wanted, int error) {
  throw SystemError(wanted, reasonOf(error));
}

constexpr const char* kWrite = "a file that can be written";
constexpr mode_t kNewFile = S_IRUSR | S_IWUSR | S_IRGRP | S_IWGRP | S_IROTH | S_IWOTH;
constexpr mode_t kOwnFile = S_IRUSR | S_IWUSR;
constexpr mode_t kPermissions = S_ISUID | S_ISGID | S_ISVTX | S_IRWXU | S_IRWXG | S_IRWXO;

/// Retries a call until no signal interrupts it.
template <class Call>
auto uninterrupted(const Call& call) {
  for (;;) {
    const auto result = call();
    if (result >= 0 || errno != EINTR) return result;
  }
}

int openHandle(const char* path, int flags, mode_t mode = kNewFile) {
  return uninterrupted([&] { return ::open(path, flags | O_CLOEXEC, mode); });
}

int openFile(const std::string& path, int flags, const char* wanted) {
  if (path.find('\0') != std::string::npos) failBy(wanted, EINVAL);
  const int handle = openHandle(path.c_str(), flags);
  if (handle < 0) failBy(wanted, errno);
  return handle;
}

/// A file open for writing, closed by the destructor.
class OutputFile {
 public:
  explicit OutputFile(int handle) : handle_(handle) {}
  OutputFile(const std::string& path, int flags)
      : handle_(openFile(path, O_WRONLY | flags, kWrite)) {}
  OutputFile(const OutputFile&) = delete;
  OutputFile& operator=(const OutputFile&) = delete;
  ~OutputFile() { ::close(handle_); }

  void write(std::string_view bytes) const {
    while (!bytes.empty()) {
      const ssize_t written =
          uninterrupted([&] { return ::write(handle_, bytes.data(), bytes.size()); });
      if (written >= 0) {
        bytes.remove_prefix(static_cast<std::size_t>(written));
      } else if (errno == EAGAIN) {
        waitForRoom();
      } else {
        failBy(kWrite, errno);
      }
    }
  }

  /// Waits until the bytes are on the disk, if the file is on one.
  void flush() const {
    if (uninterrupted([&] { return ::fsync(handle_); }) == 0) return;
    if (errno != EINVAL && errno != ENOTSUP) failBy(kWrite, errno);
  }

  [[nodiscard]] struct stat status() const {
    struct stat status {};
    if (::fstat(handle_, &status) != 0) failBy(kWrite, errno);
    return status;
  }

  /// Gives the file the same owner and permissions as another file. If the system does not allow
  /// setting the owner, the writer stays the owner and the set-ID bits are dropped; if the group
  /// cannot be set either, so are its permissions.
  void takeAfter(const struct stat& other) const {
    constexpr auto kKeptOwner = static_cast<uid_t>(-1);
    const struct stat own = status();
    mode_t permissions = other.st_mode & kPermissions;
    const bool same = own.st_uid == other.st_uid && own.st_gid == other.st_gid;
    if (!same && ::fchown(handle_, other.st_uid, other.st_gid) != 0) {
      permissions &= ~static_cast<mode_t>(S_ISUID | S_ISGID);
      const bool sameGroup = ::fchown(handle_, kKeptOwner, other.st_gid) == 0;
      if (!sameGroup) permissions &= ~static_cast<mode_t>(S_IRWXG);
    }
    // Some file systems have one owner and one set of permissions for all files, and refuse
    // changes.
    if ((status().st_mode & kPermissions) == permissions) return;
    if (::fchmod(handle_, permissions) != 0) failBy(kWrite, errno);
  }

  /// Locks out other writers that use this library until the file is closed, if possible.
  void lock() const {
    static_cast<void>(uninterrupted([&] { return ::flock(handle_, LOCK_EX); }));
  }

  void cutTo(off_t size) const {
    static_cast<void>(uninterrupted([&] { return ::ftruncate(handle_, size); }));
  }

 private:
  /// Waits until a non-blocking handle, such as that of a pipe, accepts more.
  void waitForRoom() const {
    pollfd space{.fd = handle_, .events = POLLOUT, .revents = 0};
    static_cast<void>(uninterrupted([&] { return ::poll(&space, 1, -1); }));
  }

  int handle_;
};

/// `path` without its file name.
std::string folderOf(const std::string& path) { return path.substr(0, path.find_last_of('/') + 1); }

bool isNumber(std::string_view text) {
  return !text.empty() && text.find_first_not_of("0123456789") == text.npos;
}

/// Whether `path` names an open file of this process or, below /proc, of any process. Other names
/// below /proc, such as those in /proc/self/cwd, may refer to ordinary files.
bool namesOpenFile(const std::string& path) {
  constexpr std::string_view kProcesses = "/proc/";
  constexpr std::string_view kFiles = "/fd/";
  const std::string folder = folderOf(path);
  if (folder == "/dev/fd/") return true;
  if (!folder.starts_with(kProcesses) || !folder.ends_with(kFiles)) return false;
  const std::size_t end = folder.size() - kFiles.size();
  const std::string process = folder.substr(kProcesses.size(), end - kProcesses.size());
  return process == "self" || isNumber(process);
}

/// A duplicate of the handle that `path` names, if this process has it open for writing: writes
/// continue at its position. -1 for anything else.
int ownHandle(const std::string& path) {
  const bool own = path.starts_with("/proc/self/") || path.starts_with("/dev/");
  if (!own || !namesOpenFile(path)) return -1;
  const std::string number = fileName(path);
  int handle = -1;
  std::from_chars(number.data(), number.data() + number.size(), handle);
  const int flags = ::fcntl(handle, F_GETFL);
  const bool writes = flags >= 0 && (flags & O_ACCMODE) != O_RDONLY;
  return writes ? ::fcntl(handle, F_DUPFD_CLOEXEC, 0) : -1;
}

void writeStraight(const std::string& path, std::string_view bytes) {
  const int own = ownHandle(path);
  const OutputFile file = own >= 0 ? OutputFile(own) : OutputFile(path, O_CREAT | O_TRUNC);
  file.write(bytes);
  file.flush();
}

/// The target of a symbolic link; nothing for anything else.
std::optional<std::string> linkAt(const std::string& path) {
  std::string text(PATH_MAX, '\0');
  const ssize_t size = ::readlink(path.c_str(), text.data(), text.size());
  if (size < 0 && errno != EINVAL && errno != ENOENT) failBy(kWrite, errno);
  if (size < 0) return std::nullopt;
  text.resize(static_cast<std::size_t>(size));
  return text;
}

/// `path`, or the path that it points to if it is a symbolic link. Stops at the name of an open
/// file, such as the one that /dev/stdout points to.
std::string entryOf(std::string path) {
  constexpr int kMostLinks = 40;
  for (int links = 0; links <= kMostLinks; ++links) {
    const auto link = linkAt(path);
    if (!link || namesOpenFile(path)) return path;
    path = link->starts_with('/') ? *link : folderOf(path) + *link;
  }
  failBy(kWrite, ELOOP);
}

/// A new file next to the one that it replaces; the destructor removes it unless it was renamed.
class Temporary {
 public:
  Temporary(const std::string& folder, mode_t mode, const char* wanted) {
    const std::string begin = folder + ".aq-" + std::to_string(::getpid()) + '-';
    for (int number = 0; handle_ < 0; ++number) {
      path_ = begin + std::to_string(number) + ".tmp";
      handle_ = openHandle(path_.c_str(), O_WRONLY | O_CREAT | O_EXCL, mode);
      if (handle_ < 0 && errno != EEXIST) failBy(wanted, errno);
    }
  }
  Temporary(const Temporary&) = delete;
  Temporary& operator=(const Temporary&) = delete;
  ~Temporary() {
    if (!renamed_) ::unlink(path_.c_str());
  }

  [[nodiscard]] int handle() const { return handle_; }

  void renameTo(const std::string& path, const char* wanted) {
    if (::rename(path_.c_str(), path.c_str()) != 0) failBy(wanted, errno);
    renamed_ = true;
  }

 private:
  std::string path_;
  int handle_ = -1;
  bool renamed_ = false;
};

/// Makes a new or renamed file survive a power failure, if the file system supports that. Ignores
/// errors: the file already has its new content.
void flushFolder(const std::string& folder) {
  const int handle = openHandle(folder.empty() ? "." : folder.c_str(), O_RDONLY | O_DIRECTORY);
  if (handle < 0) return;
  static_cast<void>(::fsync(handle));
  ::close(handle);
}

/// The state of the file that `path` names; nothing if it does not exist.
std::optional<struct stat> statusOf(const std::string& path) {
  struct stat status {};
  if (::stat(path.c_str(), &status) == 0) return status;
  if (errno != ENOENT) failBy(kWrite, errno);
  return std::nullopt;
}

bool sameFile(const std::optional<struct stat>& one, const struct stat& other) {
  return one && one->st_dev == other.st_dev && one->st_ino == other.st_ino;
}

/// Appends to a file; after a failure, truncates a regular file to its previous length.
void appendTo(const OutputFile& file, const std::string& path, const struct stat& before,
              std::string_view bytes) {
  try {
    file.write(bytes);
    file.flush();
    if (before.st_size == 0) flushFolder(folderOf(entryOf(path)));  // the file may be new
  } catch (...) {
    if (S_ISREG(before.st_mode)) file.cutTo(before.st_size);
    throw;
  }
}

/// A folder open for reading.
class Folder {
 public:
  explicit Folder(const std::string& path) : folder_(::opendir(path.c_str())) {
    if (folder_ == nullptr) failBy(kRead, errno);
  }
  Folder(const Folder&) = delete;
  Folder& operator=(const Folder&) = delete;
  ~Folder() { ::closedir(folder_); }

  /// The name of the next entry; `nullptr` after the last one.
  [[nodiscard]] const char* next() const {
    errno = 0;
    const dirent* const entry = ::readdir(folder_);
    if (entry == nullptr && errno != 0) failBy(kRead, errno);
    return entry != nullptr ? entry->d_name : nullptr;
  }

 private:
  static constexpr const char* kRead = "a folder that can be read";

  DIR* folder_;
};

constexpr const char* kRun = "a program that can be run";
constexpr const char* kSucceeds = "a program that exits with status 0";

/// The ends of a new pipe; the destructor closes those that are still open.
class Pipe {
 public:
  Pipe() {
    if (::pipe2(ends_.data(), O_CLOEXEC) != 0) failBy(kRun, errno);
  }
  Pipe(const Pipe&) = delete;
  Pipe& operator=(const Pipe&) = delete;
  ~Pipe() {
    ::close(ends_[0]);
    closeInput();
  }

  [[nodiscard]] int output() const { return ends_[0]; }
  [[nodiscard]] int input() const { return ends_[1]; }
  void closeInput() {
    if (ends_[1] >= 0) ::close(ends_[1]);
    ends_[1] = -1;
  }

 private:
  std::array<int, 2> ends_{};
};

/// The standard streams of a process to be started: input is empty, output goes to `output`, errors
/// are discarded.
class Openings {
 public:
  explicit Openings(int output) {
    if (const int error = ::posix_spawn_file_actions_init(&actions_); error != 0) {
      failBy(kRun, error);
    }
    const bool done =
        ::posix_spawn_file_actions_addopen(&actions_, STDIN_FILENO, kNull, O_RDONLY, 0) == 0 &&
        ::posix_spawn_file_actions_addopen(&actions_, STDERR_FILENO, kNull, O_WRONLY, 0) == 0 &&
        ::posix_spawn_file_actions_adddup2(&actions_, output, STDOUT_FILENO) == 0;
    if (!done) {
      ::posix_spawn_file_actions_destroy(&actions_);
      failBy(kRun, ENOMEM);
    }
  }
  Openings(const Openings&) = delete;
  Openings& operator=(const Openings&) = delete;
  ~Openings() { ::posix_spawn_file_actions_destroy(&actions_); }

  [[nodiscard]] const posix_spawn_file_actions_t* get() const { return &actions_; }

 private:
  static constexpr const char* kNull = "/dev/null";

  posix_spawn_file_actions_t actions_{};
};

/// A started process; the destructor kills it unless `status` was called.
class Process {
 public:
  Process(const std::string& program, const std::vector<std::string>& arguments, int output) {
    std::vector<std::string> words{program};
    words.insert(words.end(), arguments.begin(), arguments.end());
    std::vector<char*> texts;
    texts.reserve(words.size() + 1);
    for (std::string& word : words) {
      if (word.find('\0') != word.npos) failBy(kRun, EINVAL);
      texts.push_back(word.data());
    }
    texts.push_back(nullptr);
    const Openings openings(output);
    const int error =
        ::posix_spawn(&number_, program.c_str(), openings.get(), nullptr, texts.data(), environ);
    if (error != 0) failBy(kRun, error);
  }
  Process(const Process&) = delete;
  Process& operator=(const Process&) = delete;
  ~Process() {
    if (number_ <= 0) return;
    ::kill(number_, SIGKILL);
    static_cast<void>(status());
  }

  /// Waits for the process to end and returns its status.
  int status() {
    int status = 0;
    const pid_t ended = uninterrupted([&] { return ::waitpid(number_, &status, 0); });
    number_ = 0;
    if (ended < 0) failBy(kSucceeds, errno);
    return status;
  }

 private:
  pid_t number_ = 0;
};

}  // namespace

const std::string_view lineEnd = "\n";

InputFile::InputFile(const std::string& path)
    : handle_(openFile(path, O_RDONLY, "a file that can be opened")) {}

InputFile::~InputFile() { ::close(handle_); }

std::size_t InputFile::read(std::span<char> buffer) {
  const ssize_t got = uninterrupted([&] { return ::read(handle_, buffer.data(), buffer.size()); });
  if (got < 0) failBy("a file that can be read", errno);
  return static_cast<std::size_t>(got);
}

void replaceFile(const std::string& path, std::string_view bytes) {
  if (path.find('\0') != std::string::npos) failBy(kWrite, EINVAL);
  const auto old = statusOf(path);
  const std::string entry = entryOf(path);
  if ((old && !S_ISREG(old->st_mode)) || namesOpenFile(entry)) return writeStraight(entry, bytes);
  if (old) static_cast<void>(OutputFile(path, 0));  // throws without write permission
  const std::string folder = folderOf(entry);
  // Nobody else may read the file until it has the permissions of the old one.
  Temporary temporary(folder, old ? kOwnFile : kNewFile,
                      old ? "a folder where a temporary file can be created" : kWrite);
  OutputFile file(temporary.handle());
  if (old) file.takeAfter(*old);
  file.write(bytes);
  file.flush();
  temporary.renameTo(entry, old ? "a folder that lets the file be replaced" : kWrite);
  flushFolder(folder);
}

void appendToFile(const std::string& path, std::string_view bytes) {
  constexpr int kMostTimes = 100;  // some file systems give a file a new inode number on each call
  for (int times = 1;; ++times) {
    const int own = ownHandle(entryOf(path));
    const OutputFile file = own >= 0 ? OutputFile(own) : OutputFile(path, O_CREAT | O_APPEND);
    file.lock();
    const struct stat before = file.status();
    // Another file may have taken the name while this call waited for the lock.
    if (own < 0 && times < kMostTimes && !sameFile(statusOf(path), before)) continue;
    return appendTo(file, path, before, bytes);
  }
}

void preferLargePages([[maybe_unused]] void* memory, [[maybe_unused]] std::size_t size) {
#ifdef MADV_HUGEPAGE
  ::madvise(memory, size, MADV_HUGEPAGE);  // failure is harmless
#endif
}

std::vector<std::string> filesIn(const std::string& folder) {
  std::vector<std::string> names;
  const Folder entries(folder);
  while (const char* const name = entries.next()) {
    if (isFile(folder + '/' + name)) names.emplace_back(name);
  }
  return names;
}

std::string outputOf(const std::string& program, const std::vector<std::string>& arguments) {
  constexpr std::size_t kBlock = std::size_t{64} * 1024;
  Pipe pipe;
  Process process(program, arguments, pipe.input());
  pipe.closeInput();
  std::string output;
  for (;;) {
    const std::size_t size = output.size();
    output.resize(size + kBlock);
    const ssize_t got =
        uninterrupted([&] { return ::read(pipe.output(), output.data() + size, kBlock); });
    if (got < 0) failBy(kSucceeds, errno);
    output.resize(size + static_cast<std::size_t>(got));
    if (got == 0) break;
  }
  const int status = process.status();
  if (WIFSIGNALED(status)) {
    throw SystemError(kSucceeds, "signal " + std::to_string(WTERMSIG(status)));
  }
  if (WEXITSTATUS(status) != 0) {
    throw SystemError(kSucceeds, "status " + std::to_string(WEXITSTATUS(status)));
  }
  return output;
}

std::optional<std::int64_t> lastChanged(const std::string& path) {
  struct stat status {};
  if (::stat(path.c_str(), &status) != 0) return std::nullopt;
  return status.st_mtime;
}

bool isFile(const std::string& path) {
  struct stat status {};
  return ::stat(path.c_str(), &status) == 0 && S_ISREG(status.st_mode);
}

bool areOneFile(const std::string& one, const std::string& other) {
  struct stat first {};
  struct stat second {};
  return ::stat(one.c_str(), &first) == 0 && ::stat(other.c_str(), &second) == 0 &&
         sameFile(first, second);
}

std::string fileName(const std::string& path) { return path.substr(path.find_last_of('/') + 1); }

std::optional<std::tm> localTime(std::int64_t at) {
  const auto time = static_cast<std::time_t>(at);
  std::tm local{};
  if (time != at || ::localtime_r(&time, &local) == nullptr) return std::nullopt;
  if (local.tm_year < 1 - 1900 || local.tm_year > 9999 - 1900) return std::nullopt;
  return local;
}

}  // namespace aq::platform
