#include "aq/core/platform.h"
#define WIN32_LEAN_AND_MEAN
#include <windows.h>
// clang-format off
#include <aclapi.h>  // needs the header above
// clang-format on

#include <algorithm>
#include <array>
#include <chrono>
#include <cwctype>
#include <memory>

namespace aq::platform {
namespace {

constexpr const char* kOpen = "a file that can be opened";
constexpr const char* kRead = "a file that can be read";
constexpr const char* kWrite = "a file that can be written";
constexpr const char* kReplace = "a folder that lets the file be replaced";
constexpr const char* kReadFolder = "a folder that can be read";
constexpr const char* kRun = "a program that can be run";
constexpr const char* kSucceeds = "a program that exits with status 0";
constexpr DWORD kShareAll = FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE;

std::string utf8(std::wstring_view text) {
  const int size = static_cast<int>(text.size());
  const int length =
      ::WideCharToMultiByte(CP_UTF8, 0, text.data(), size, nullptr, 0, nullptr, nullptr);
  std::string bytes(static_cast<std::size_t>(length), '\0');
  ::WideCharToMultiByte(CP_UTF8, 0, text.data(), size, bytes.data(), length, nullptr, nullptr);
  return bytes;
}

struct Reason {
  DWORD error;
  const char* text;
};

// Errors that other systems also report are worded as they are there.
constexpr std::array kReasons{
    Reason{ERROR_FILE_NOT_FOUND, "No such file or directory"},
    Reason{ERROR_PATH_NOT_FOUND, "No such file or directory"},
    Reason{ERROR_INVALID_DRIVE, "No such file or directory"},
    Reason{ERROR_BAD_NETPATH, "No such file or directory"},
    Reason{ERROR_BAD_NET_NAME, "No such file or directory"},
    Reason{ERROR_ACCESS_DENIED, "Permission denied"},
    Reason{ERROR_SHARING_VIOLATION, "another program holds the file open"},
    Reason{ERROR_LOCK_VIOLATION, "another program has locked the file"},
    Reason{ERROR_USER_MAPPED_FILE, "another program holds the file open"},
    Reason{ERROR_WRITE_PROTECT, "Read-only file system"},
    Reason{ERROR_DISK_FULL, "No space left on device"},
    Reason{ERROR_HANDLE_DISK_FULL, "No space left on device"},
    Reason{ERROR_FILENAME_EXCED_RANGE, "File name too long"},
    Reason{ERROR_INVALID_NAME, "the system does not allow such a name"},
    Reason{ERROR_BAD_PATHNAME, "the system does not allow such a name"},
    Reason{ERROR_DIRECTORY, "Not a directory"},
    Reason{ERROR_NOT_ENOUGH_MEMORY, "Cannot allocate memory"},
    Reason{ERROR_OUTOFMEMORY, "Cannot allocate memory"},
    Reason{ERROR_BROKEN_PIPE, "Broken pipe"},
    Reason{ERROR_NO_DATA, "Broken pipe"},
    Reason{ERROR_BAD_EXE_FORMAT, "Exec format error"},
    Reason{ERROR_CANT_RESOLVE_FILENAME, "Too many levels of symbolic links"},
};

/// The system's own message, in English if available.
std::string systemText(DWORD error) {
  constexpr DWORD kFlags = FORMAT_MESSAGE_FROM_SYSTEM | FORMAT_MESSAGE_IGNORE_INSERTS;
  constexpr DWORD kEnglish = MAKELANGID(LANG_ENGLISH, SUBLANG_ENGLISH_US);
  std::array<wchar_t, 512> text{};
  const auto size = static_cast<DWORD>(text.size());
  DWORD length = ::FormatMessageW(kFlags, nullptr, error, kEnglish, text.data(), size, nullptr);
  if (length == 0) length = ::FormatMessageW(kFlags, nullptr, error, 0, text.data(), size, nullptr);
  std::wstring_view words(text.data(), length);
  while (!words.empty() && (words.back() <= L' ' || words.back() == L'.')) words.remove_suffix(1);
  return words.empty() ? "error " + std::to_string(error) : utf8(words);
}

[[noreturn]] void failBy(const char* wanted, DWORD error = ::GetLastError()) {
  const auto* const known =
      std::find_if(kReasons.begin(), kReasons.end(),
                   [error](const Reason& reason) { return reason.error == error; });
  throw SystemError(wanted, known != kReasons.end() ? known->text : systemText(error));
}

std::wstring wide(const std::string& text, const char* wanted) {
  if (text.find('\0') != text.npos) throw SystemError(wanted, "Invalid argument");
  if (text.empty()) return {};
  const int size = static_cast<int>(text.size());
  const auto convert = [&](wchar_t* to, int room) {
    return ::MultiByteToWideChar(CP_UTF8, MB_ERR_INVALID_CHARS, text.data(), size, to, room);
  };
  const int length = convert(nullptr, 0);
  if (length == 0) throw SystemError(wanted, "the name is not valid UTF-8");
  std::wstring characters(static_cast<std::size_t>(length), L'\0');
  convert(characters.data(), length);
  return characters;
}

/// Whether `path` begins with \\?\ or \\.\, the system's own form, which is passed on unchanged.
bool isRaw(std::wstring_view path) {
  return path.starts_with(L"\\\\?\\") || path.starts_with(L"\\\\.\\");
}

/// Whether a file name, its extensions aside, names a device, whatever the folder.
bool isDevice(std::wstring_view name) {
  std::wstring base(name.substr(0, name.find(L'.')));
  while (base.ends_with(L' ')) base.pop_back();
  std::transform(base.begin(), base.end(), base.begin(),
                 [](wchar_t letter) { return static_cast<wchar_t>(std::towupper(letter)); });
  for (const wchar_t* device : {L"CON", L"PRN", L"AUX", L"NUL", L"CONIN$", L"CONOUT$"}) {
    if (base == device) return true;
  }
  constexpr std::wstring_view kNumbers = L"0123456789\u00B9\u00B2\u00B3";
  return base.size() == 4 && (base.starts_with(L"COM") || base.starts_with(L"LPT")) &&
         kNumbers.find(base.back()) != kNumbers.npos;
}

/// Rejects names that are too long or that the system would silently map to another file or a
/// device.
void checkNames(std::wstring_view path, const char* wanted) {
  constexpr std::size_t kMostOfName = 255;
  constexpr std::wstring_view kSeparators = L"/\\";
  if (path.size() >= 2 && path[1] == L':') path.remove_prefix(2);
  if (path.find(L':') != path.npos) throw SystemError(wanted, "a colon in the name");
  for (std::size_t begin = 0; begin <= path.size();) {
    const std::size_t end = std::min(path.find_first_of(kSeparators, begin), path.size());
    const std::wstring_view name = path.substr(begin, end - begin);
    begin = end + 1;
    if (name.empty() || name == L"." || name == L"..") continue;
    if (name.size() > kMostOfName) failBy(wanted, ERROR_FILENAME_EXCED_RANGE);
    if (name.ends_with(L'.') || name.ends_with(L' ')) {
      throw SystemError(wanted, "a dot or blank at the end of a name, which the system drops");
    }
    if (isDevice(name)) {
      throw SystemError(wanted,
                        '"' + utf8(name) + "\" is a name that the system reserves for a device");
    }
  }
}

/// The absolute path, in the system's own form if it is long.
std::wstring systemPath(std::wstring path, const char* wanted) {
  constexpr std::size_t kMostUsual =
      200;  // leaves room for the name of a temporary file next to it
  if (path.empty()) failBy(wanted, ERROR_FILE_NOT_FOUND);
  const DWORD size = ::GetFullPathNameW(path.c_str(), 0, nullptr, nullptr);
  std::wstring full(size, L'\0');
  const DWORD length = ::GetFullPathNameW(path.c_str(), size, full.data(), nullptr);
  if (length == 0 || length >= size) failBy(wanted, ERROR_FILENAME_EXCED_RANGE);
  full.resize(length);
  if (length < kMostUsual) return full;
  return full.starts_with(L"\\\\") ? L"\\\\?\\UNC" + full.substr(1) : L"\\\\?\\" + full;
}

/// Converts `path` for the system. Only a bare name or the system's own form can name a device.
std::wstring pathOf(const std::string& path, const char* wanted) {
  std::wstring name = wide(path, wanted);
  const bool bareDevice = name.find_first_of(L"./\\: ") == name.npos && isDevice(name);
  if (isRaw(name) || bareDevice) return name;
  checkNames(name, wanted);
  return systemPath(std::move(name), wanted);
}

/// Retries an operation for a short while if it fails because another program, such as a virus
/// scanner or an indexer, has the file open for a moment.
template <class Call>
bool patiently(const Call& call) {
  for (DWORD wait = 5;; wait *= 2) {
    if (call()) return true;
    const DWORD error = ::GetLastError();
    const bool mayEnd = error == ERROR_SHARING_VIOLATION || error == ERROR_LOCK_VIOLATION ||
                        error == ERROR_ACCESS_DENIED;
    if (!mayEnd || wait > 100) return false;
    ::Sleep(wait);
    ::SetLastError(error);
  }
}

struct Closer {
  void operator()(HANDLE handle) const { ::CloseHandle(handle); }
};
using Handle = std::unique_ptr<void, Closer>;

Handle owned(HANDLE handle) { return Handle(handle == INVALID_HANDLE_VALUE ? nullptr : handle); }

bool has(const std::wstring& path, DWORD attribute) {
  const DWORD attributes = ::GetFileAttributesW(path.c_str());
  return attributes != INVALID_FILE_ATTRIBUTES && (attributes & attribute) != 0;
}

bool isThere(const std::wstring& path) {
  return ::GetFileAttributesW(path.c_str()) != INVALID_FILE_ATTRIBUTES;
}

bool isFolder(const std::wstring& path) { return has(path, FILE_ATTRIBUTE_DIRECTORY); }

/// Throws `SystemError` for a `path` that could not be opened; the reason is that it is a folder,
/// or else `error`.
[[noreturn]] void failToOpen(const std::wstring& path, const char* wanted, DWORD error) {
  if (isFolder(path)) throw SystemError(wanted == kOpen ? kRead : wanted, "Is a directory");
  failBy(wanted, error);
}

struct Opening {
  DWORD access;
  DWORD sharing = kShareAll;
  DWORD disposition = OPEN_EXISTING;
  DWORD flags = FILE_ATTRIBUTE_NORMAL;
};

Handle open(const std::wstring& path, const Opening& how, const char* wanted) {
  if (how.access == GENERIC_WRITE && !isFolder(path) && has(path, FILE_ATTRIBUTE_READONLY)) {
    throw SystemError(wanted, "the file is marked as read-only");
  }
  Handle handle;
  const bool opened = patiently([&] {
    handle = owned(::CreateFileW(path.c_str(), how.access, how.sharing, nullptr, how.disposition,
                                 how.flags, nullptr));
    return handle != nullptr || (::GetLastError() == ERROR_ACCESS_DENIED);
  });
  if (!opened || handle == nullptr) failToOpen(path, wanted, ::GetLastError());
  return handle;
}

/// A duplicate of a standard stream's handle if `path` names the stream the way other systems do,
/// for example /dev/stdout; otherwise null.
Handle standardStream(const std::string& path) {
  DWORD stream = 0;
  if (path == "/dev/stdin") stream = STD_INPUT_HANDLE;
  if (path == "/dev/stdout") stream = STD_OUTPUT_HANDLE;
  if (path == "/dev/stderr") stream = STD_ERROR_HANDLE;
  if (stream == 0) return nullptr;
  const HANDLE self = ::GetCurrentProcess();
  HANDLE copy = nullptr;
  if (::DuplicateHandle(self, ::GetStdHandle(stream), self, &copy, 0, FALSE,
                        DUPLICATE_SAME_ACCESS) == 0) {
    failBy(stream == STD_INPUT_HANDLE ? kOpen : kWrite);
  }
  return Handle(copy);
}

void write(const Handle& file, std::string_view bytes) {
  constexpr std::size_t kMost = std::size_t{16} * 1024 * 1024;  // the limit for network drives
  while (!bytes.empty()) {
    const auto size = static_cast<DWORD>(std::min(bytes.size(), kMost));
    DWORD written = 0;
    if (::WriteFile(file.get(), bytes.data(), size, &written, nullptr) == 0) failBy(kWrite);
    bytes.remove_prefix(written);
  }
}

/// Waits until the bytes are on the disk, if the file is on one.
void flush(const Handle& file) {
  if (::FlushFileBuffers(file.get()) != 0) return;
  const DWORD error = ::GetLastError();
  if (error != ERROR_INVALID_FUNCTION && error != ERROR_NOT_SUPPORTED) failBy(kWrite, error);
}

bool onDisk(const Handle& file) { return ::GetFileType(file.get()) == FILE_TYPE_DISK; }

/// The file or folder that `path` refers to, opened only to query its attributes.
Handle seen(const std::string& path) {
  return open(pathOf(path, kOpen),
              {.access = FILE_READ_ATTRIBUTES, .flags = FILE_FLAG_BACKUP_SEMANTICS}, kOpen);
}

BY_HANDLE_FILE_INFORMATION informationOf(const Handle& file) {
  BY_HANDLE_FILE_INFORMATION information{};
  if (::GetFileInformationByHandle(file.get(), &information) == 0) failBy(kOpen);
  return information;
}

/// The access rights of a file; not `known` if it has none or they cannot be read.
class Access {
 public:
  explicit Access(const Handle& file) {
    const DWORD error = ::GetSecurityInfo(file.get(), SE_FILE_OBJECT, DACL_SECURITY_INFORMATION,
                                          nullptr, nullptr, &list_, nullptr, &descriptor_);
    if (error != ERROR_SUCCESS) descriptor_ = nullptr;
  }
  Access(const Access&) = delete;
  Access& operator=(const Access&) = delete;
  ~Access() { ::LocalFree(descriptor_); }

  [[nodiscard]] bool known() const { return descriptor_ != nullptr && list_ != nullptr; }

  void giveTo(const Handle& file) const {
    SECURITY_DESCRIPTOR_CONTROL control{};
    DWORD revision = 0;
    ::GetSecurityDescriptorControl(descriptor_, &control, &revision);
    const DWORD parts = DACL_SECURITY_INFORMATION | ((control & SE_DACL_PROTECTED) != 0
                                                         ? PROTECTED_DACL_SECURITY_INFORMATION
                                                         : UNPROTECTED_DACL_SECURITY_INFORMATION);
    const DWORD error =
        ::SetSecurityInfo(file.get(), SE_FILE_OBJECT, parts, nullptr, nullptr, list_, nullptr);
    if (error != ERROR_SUCCESS) failBy(kWrite, error);
  }

 private:
  PSECURITY_DESCRIPTOR descriptor_ = nullptr;
  PACL list_ = nullptr;
};

/// The access rights and attributes that a file passes on to the one that replaces it.
struct Old {
  explicit Old(const Handle& file)
      : access(file), attributes(informationOf(file).dwFileAttributes & kKept) {}

  static constexpr DWORD kKept = FILE_ATTRIBUTE_HIDDEN | FILE_ATTRIBUTE_SYSTEM |
                                 FILE_ATTRIBUTE_ARCHIVE | FILE_ATTRIBUTE_NOT_CONTENT_INDEXED |
                                 FILE_ATTRIBUTE_ENCRYPTED;
  Access access;
  DWORD attributes;
};

/// A new file next to the one that it replaces; the destructor removes it unless it was renamed. No
/// other process can open it while it is being written.
class Temporary {
 public:
  Temporary(const std::wstring& folder, const Old* old, const char* wanted) {
    const bool access = old != nullptr && old->access.known();
    const DWORD rights = GENERIC_WRITE | (access ? READ_CONTROL | WRITE_DAC : 0U);
    const std::wstring begin = folder + L".aq-" + std::to_wstring(::GetCurrentProcessId()) + L'-';
    for (int number = 0; file_ == nullptr; ++number) {
      path_ = begin + std::to_wstring(number) + L".tmp";
      file_ =
          owned(::CreateFileW(path_.c_str(), rights, 0, nullptr, CREATE_NEW,
                              old != nullptr ? old->attributes : FILE_ATTRIBUTE_NORMAL, nullptr));
      if (file_ == nullptr && ::GetLastError() != ERROR_FILE_EXISTS) failBy(wanted);
    }
    if (access) giveAccess(*old);
  }
  Temporary(const Temporary&) = delete;
  Temporary& operator=(const Temporary&) = delete;
  ~Temporary() {
    file_.reset();
    if (!renamed_) ::DeleteFileW(path_.c_str());
  }

  [[nodiscard]] const Handle& file() const { return file_; }

  void renameTo(const std::wstring& path, const char* wanted) {
    file_.reset();
    constexpr DWORD kHow = MOVEFILE_REPLACE_EXISTING | MOVEFILE_WRITE_THROUGH;
    renamed_ = patiently([&] { return ::MoveFileExW(path_.c_str(), path.c_str(), kHow) != 0; });
    if (!renamed_) failBy(wanted);
  }

 private:
  void giveAccess(const Old& old) {
    try {
      old.access.giveTo(file_);
    } catch (...) {
      file_.reset();
      ::DeleteFileW(path_.c_str());
      throw;
    }
  }

  std::wstring path_;
  Handle file_;
  bool renamed_ = false;
};

/// `path` without its file name.
std::wstring folderOf(const std::wstring& path) {
  return path.substr(0, path.find_last_of(L"/\\") + 1);
}

/// The path of an open file, with links resolved.
std::wstring finalPath(const Handle& file) {
  const DWORD size = ::GetFinalPathNameByHandleW(file.get(), nullptr, 0, FILE_NAME_NORMALIZED);
  std::wstring path(size, L'\0');
  const DWORD length =
      ::GetFinalPathNameByHandleW(file.get(), path.data(), size, FILE_NAME_NORMALIZED);
  if (length == 0 || length >= size) failBy(kWrite);
  path.resize(length);
  return path;
}

void replace(const std::wstring& path, const Old* old, std::string_view bytes) {
  Temporary temporary(folderOf(path), old,
                      old != nullptr ? "a folder where a temporary file can be created" : kWrite);
  write(temporary.file(), bytes);
  flush(temporary.file());
  temporary.renameTo(path, old != nullptr ? kReplace : kWrite);
}

/// Locks out other writers that use this library, if possible: locks a byte beyond the end of any
/// file, which does not affect readers.
class Lock {
 public:
  explicit Lock(const Handle& file) : file_(file) {
    ::LockFileEx(file_.get(), LOCKFILE_EXCLUSIVE_LOCK, 0, 1, 0, &place_);
  }
  Lock(const Lock&) = delete;
  Lock& operator=(const Lock&) = delete;
  ~Lock() { ::UnlockFileEx(file_.get(), 0, 1, 0, &place_); }

 private:
  static OVERLAPPED farPlace() {
    OVERLAPPED place{};
    place.Offset = 0xFFFFFFFE;
    place.OffsetHigh = 0x7FFFFFFF;
    return place;
  }

  const Handle& file_;
  OVERLAPPED place_ = farPlace();
};

LONGLONG seek(const Handle& file, LONGLONG place, DWORD from) {
  LARGE_INTEGER to{};
  to.QuadPart = place;
  LARGE_INTEGER at{};
  if (::SetFilePointerEx(file.get(), to, &at, from) == 0) failBy(kWrite);
  return at.QuadPart;
}

/// Appends to a file; after a failure, truncates it to its previous length.
void appendTo(const Handle& file, std::string_view bytes) {
  const Lock lock(file);
  const LONGLONG before = seek(file, 0, FILE_END);
  try {
    write(file, bytes);
    flush(file);
  } catch (...) {
    seek(file, before, FILE_BEGIN);
    ::SetEndOfFile(file.get());
    throw;
  }
}

/// Appends an argument, quoted as programs expect; without quotes if it needs none, since some
/// programs do not remove them.
void appendArgument(std::wstring& line, std::wstring_view argument) {
  if (!line.empty()) line += L' ';
  if (!argument.empty() && argument.find_first_of(L" \t\"") == argument.npos) {
    line += argument;
    return;
  }
  line += L'"';
  std::size_t backslashes = 0;
  for (const wchar_t letter : argument) {
    if (letter == L'"') line.append(backslashes + 1, L'\\');
    backslashes = letter == L'\\' ? backslashes + 1 : 0;
    line += letter;
  }
  line.append(backslashes, L'\\');
  line += L'"';
}

/// The only handles that a started process inherits.
class Inherited {
 public:
  explicit Inherited(std::array<HANDLE, 2>& handles) {
    SIZE_T size = 0;
    ::InitializeProcThreadAttributeList(nullptr, 1, 0, &size);
    room_.resize(size);
    if (::InitializeProcThreadAttributeList(list(), 1, 0, &size) == 0) failBy(kRun);
    if (::UpdateProcThreadAttribute(list(), 0, PROC_THREAD_ATTRIBUTE_HANDLE_LIST, handles.data(),
                                    sizeof handles, nullptr, nullptr) == 0) {
      const DWORD error = ::GetLastError();
      ::DeleteProcThreadAttributeList(list());
      failBy(kRun, error);
    }
  }
  Inherited(const Inherited&) = delete;
  Inherited& operator=(const Inherited&) = delete;
  ~Inherited() { ::DeleteProcThreadAttributeList(list()); }

  LPPROC_THREAD_ATTRIBUTE_LIST list() {
    return static_cast<LPPROC_THREAD_ATTRIBUTE_LIST>(static_cast<void*>(room_.data()));
  }

 private:
  std::vector<char> room_;
};

/// Starts a program without input, with its output in `output` and its errors discarded.
Handle start(const std::wstring& program, std::wstring line, HANDLE output) {
  SECURITY_ATTRIBUTES shared{
      .nLength = sizeof shared, .lpSecurityDescriptor = nullptr, .bInheritHandle = TRUE};
  const Handle nothing = owned(::CreateFileW(L"NUL", GENERIC_READ | GENERIC_WRITE, kShareAll,
                                             &shared, OPEN_EXISTING, 0, nullptr));
  if (nothing == nullptr) failBy(kRun);
  std::array<HANDLE, 2> handles{output, nothing.get()};
  Inherited inherited(handles);
  STARTUPINFOEXW how{};
  how.StartupInfo.cb = sizeof how;
  how.StartupInfo.dwFlags = STARTF_USESTDHANDLES;
  how.StartupInfo.hStdInput = nothing.get();
  how.StartupInfo.hStdOutput = output;
  how.StartupInfo.hStdError = nothing.get();
  how.lpAttributeList = inherited.list();
  PROCESS_INFORMATION started{};
  if (::CreateProcessW(program.c_str(), line.data(), nullptr, nullptr, TRUE,
                       EXTENDED_STARTUPINFO_PRESENT | CREATE_NO_WINDOW, nullptr, nullptr,
                       &how.StartupInfo, &started) == 0) {
    failBy(kRun);
  }
  ::CloseHandle(started.hThread);
  return Handle(started.hProcess);
}

/// Whether a program is a batch file: its interpreter could run parts of an argument as commands.
bool isBatch(std::wstring_view program) {
  std::wstring ending(program.substr(std::min(program.rfind(L'.'), program.size())));
  std::transform(ending.begin(), ending.end(), ending.begin(),
                 [](wchar_t letter) { return static_cast<wchar_t>(std::towlower(letter)); });
  return ending == L".bat" || ending == L".cmd";
}

std::string allOf(const Handle& output) {
  constexpr DWORD kBlock = DWORD{64} * 1024;
  std::string text;
  for (;;) {
    const std::size_t size = text.size();
    text.resize(size + kBlock);
    DWORD got = 0;
    const bool read = ::ReadFile(output.get(), text.data() + size, kBlock, &got, nullptr) != 0;
    if (!read && ::GetLastError() != ERROR_BROKEN_PIPE) failBy(kSucceeds);
    text.resize(size + got);
    if (!read) return text;
  }
}

constexpr long long kTicksOfSecond = 10'000'000;  // ticks of 100 ns
constexpr long long kSecondsTo1970 = 11'644'473'600;

long long ticksOf(const FILETIME& time) {
  return static_cast<long long>((std::uint64_t{time.dwHighDateTime} << 32U) | time.dwLowDateTime);
}

}  // namespace

const std::string_view lineEnd = "\r\n";

InputFile::InputFile(const std::string& path) {
  Handle file = standardStream(path);
  if (file == nullptr) {
    file = open(pathOf(path, kOpen), {.access = GENERIC_READ, .flags = FILE_FLAG_SEQUENTIAL_SCAN},
                kOpen);
  }
  handle_ = file.release();
}

InputFile::~InputFile() { ::CloseHandle(handle_); }

std::size_t InputFile::read(std::span<char> buffer) {
  constexpr std::size_t kMost = std::size_t{16} * 1024 * 1024;
  const auto size = static_cast<DWORD>(std::min(buffer.size(), kMost));
  DWORD got = 0;
  if (::ReadFile(handle_, buffer.data(), size, &got, nullptr) != 0) return got;
  const DWORD error = ::GetLastError();
  if (error != ERROR_BROKEN_PIPE && error != ERROR_HANDLE_EOF) {
    failBy(kRead, error);
  }
  return 0;
}

void replaceFile(const std::string& path, std::string_view bytes) {
  if (const Handle stream = standardStream(path)) return write(stream, bytes);
  std::wstring entry = pathOf(path, kWrite);
  const bool device = isRaw(entry) ? entry[2] == L'.' : isDevice(entry);
  if (!device && !isThere(entry)) return replace(entry, nullptr, bytes);
  Handle file = open(entry, {.access = GENERIC_WRITE}, kWrite);
  if (!onDisk(file)) return write(file, bytes);
  const Old old(file);
  if (has(entry, FILE_ATTRIBUTE_REPARSE_POINT)) entry = finalPath(file);
  file.reset();
  open(entry, {.access = DELETE}, kReplace).reset();  // fails if another program prevents deletion
  replace(entry, &old, bytes);
}

void appendToFile(const std::string& path, std::string_view bytes) {
  if (const Handle stream = standardStream(path)) return write(stream, bytes);
  // No other process can replace or delete the file while this one waits for the lock.
  const Handle file = open(pathOf(path, kWrite),
                           {.access = GENERIC_WRITE,
                            .sharing = FILE_SHARE_READ | FILE_SHARE_WRITE,
                            .disposition = OPEN_ALWAYS},
                           kWrite);
  if (!onDisk(file)) return write(file, bytes);
  appendTo(file, bytes);
}

void preferLargePages(void*, std::size_t) {}  // large pages need a privilege

std::vector<std::string> filesIn(const std::string& folder) {
  if (folder.empty()) failBy(kReadFolder, ERROR_PATH_NOT_FOUND);
  const std::wstring path = pathOf(folder, kReadFolder);
  WIN32_FIND_DATAW entry{};
  const bool ended = path.ends_with(L'\\') || path.ends_with(L'/');
  const HANDLE search = ::FindFirstFileW((path + (ended ? L"*" : L"\\*")).c_str(), &entry);
  if (search == INVALID_HANDLE_VALUE) failBy(kReadFolder);
  const std::unique_ptr<void, decltype(&::FindClose)> closed(search, &::FindClose);
  std::vector<std::string> names;
  do {
    const std::string name = utf8(static_cast<const wchar_t*>(entry.cFileName));
    const bool link = (entry.dwFileAttributes & FILE_ATTRIBUTE_REPARSE_POINT) != 0;
    const bool file = (entry.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY) == 0;
    if (file && (!link || isFile(folder + '/' + name))) names.push_back(name);
  } while (::FindNextFileW(search, &entry) != 0);
  if (::GetLastError() != ERROR_NO_MORE_FILES) failBy(kReadFolder);
  return names;
}

std::string outputOf(const std::string& program, const std::vector<std::string>& arguments) {
  const std::wstring path = pathOf(program, kRun);
  if (isBatch(path))
    throw SystemError(kRun, "a batch file, which may run parts of a file name as commands");
  std::wstring line;
  appendArgument(line, path);
  for (const std::string& argument : arguments) appendArgument(line, wide(argument, kRun));
  SECURITY_ATTRIBUTES shared{
      .nLength = sizeof shared, .lpSecurityDescriptor = nullptr, .bInheritHandle = TRUE};
  HANDLE out = nullptr;
  HANDLE in = nullptr;
  if (::CreatePipe(&out, &in, &shared, 0) == 0) failBy(kRun);
  const Handle output(out);
  Handle input(in);
  ::SetHandleInformation(out, HANDLE_FLAG_INHERIT, 0);
  const Handle process = start(path, line, in);
  input.reset();
  std::string text = allOf(output);
  ::WaitForSingleObject(process.get(), INFINITE);
  DWORD status = 0;
  if (::GetExitCodeProcess(process.get(), &status) == 0) failBy(kSucceeds);
  if (status != 0) throw SystemError(kSucceeds, "status " + std::to_string(status));
  return text;
}

std::optional<std::int64_t> lastChanged(const std::string& path) try {
  const Handle file = seen(path);
  FILETIME changed{};
  if (::GetFileTime(file.get(), nullptr, nullptr, &changed) == 0) return std::nullopt;
  return ticksOf(changed) / kTicksOfSecond - kSecondsTo1970;
} catch (const SystemError&) {
  return std::nullopt;
}

bool isFile(const std::string& path) try {
  const Handle file = seen(path);
  return onDisk(file) && (informationOf(file).dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY) == 0;
} catch (const SystemError&) {
  return false;
}

bool areOneFile(const std::string& one, const std::string& other) try {
  const Handle first = seen(one);
  const Handle second = seen(other);
  const auto a = informationOf(first);
  const auto b = informationOf(second);
  return a.dwVolumeSerialNumber == b.dwVolumeSerialNumber && a.nFileIndexHigh == b.nFileIndexHigh &&
         a.nFileIndexLow == b.nFileIndexLow;
} catch (const SystemError&) {
  return false;
}

std::string fileName(const std::string& path) { return path.substr(path.find_last_of("/\\:") + 1); }

std::optional<std::tm> localTime(std::int64_t at) {
  constexpr std::int64_t kMost = 253'402'300'799 + 86'400;  // a day after the end of 9999
  if (at < -kSecondsTo1970 || at > kMost) return std::nullopt;
  const auto ticks = static_cast<std::uint64_t>((at + kSecondsTo1970) * kTicksOfSecond);
  const FILETIME time{.dwLowDateTime = static_cast<DWORD>(ticks & 0xFFFFFFFFU),
                      .dwHighDateTime = static_cast<DWORD>(ticks >> 32U)};
  SYSTEMTIME utc{};
  SYSTEMTIME local{};
  if (::FileTimeToSystemTime(&time, &utc) == 0) return std::nullopt;
  if (::SystemTimeToTzSpecificLocalTime(nullptr, &utc, &local) == 0) return std::nullopt;
  if (local.wYear > 9999) return std::nullopt;
  std::tm result{};
  result.tm_year = local.wYear - 1900;
  result.tm_mon = local.wMonth - 1;
  result.tm_mday = local.wDay;
  result.tm_hour = local.wHour;
  result.tm_min = local.wMinute;
  result.tm_sec = local.wSecond;
  result.tm_wday = local.wDayOfWeek;
  result.tm_isdst = -1;
  return result;
}

}  // namespace aq::platform
