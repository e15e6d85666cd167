#include "tests/reliability/faults.h"

#include <fcntl.h>
#include <malloc.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <cstring>
#include <new>
#include <string_view>

namespace aq::test {
namespace {

bool armed = false;
bool struck = false;
Fault kind = Fault::Refusal;
long callsLeft = 0;
std::size_t allocated = 0;
std::size_t peak = 0;
std::array<char, 1024> calls;  // no string, whose memory would count

bool strikesNext() {
  if (--callsLeft != 0) return false;
  struck = true;
  if (kind == Fault::Kill) ::kill(::getpid(), SIGKILL);
  return true;
}

/// Whether the fault strikes this call to the system.
bool strikes(std::string_view call, bool interruptible = true) {
  if (!armed) return false;
  const std::size_t used = std::strlen(calls.data());
  if (used + call.size() + 1 < calls.size()) {
    calls[call.copy(&calls[used], call.size()) + used] = ' ';
  }
  return (interruptible || kind != Fault::Interruption) && strikesNext();
}

/// What the system says when it refuses: -1, and why.
int refusal(int error) {
  errno = kind == Fault::Interruption ? EINTR : error;
  return -1;
}

void* allocate(std::size_t size) {
  if (armed && kind == Fault::Refusal && strikesNext()) throw std::bad_alloc();
  void* const memory = std::malloc(std::max<std::size_t>(size, 1));
  if (memory == nullptr) throw std::bad_alloc();
  if (!armed) return memory;
  allocated += ::malloc_usable_size(memory);
  peak = std::max(peak, allocated);
  return memory;
}

void release(void* memory) {
  if (armed) allocated -= std::min(allocated, ::malloc_usable_size(memory));
  std::free(memory);
}

}  // namespace

void arm(Fault fault, long nth) {
  kind = fault;
  callsLeft = nth;
  struck = false;
  allocated = peak = 0;
  calls.fill('\0');
  armed = true;
}

bool disarm() {
  armed = false;
  return struck;
}

std::size_t peakOfMemory() { return peak; }

std::string callsMade() { return calls.data(); }

}  // namespace aq::test

void* operator new(std::size_t size) { return aq::test::allocate(size); }
void* operator new[](std::size_t size) { return aq::test::allocate(size); }
void operator delete(void* memory) noexcept { aq::test::release(memory); }
void operator delete[](void* memory) noexcept { aq::test::release(memory); }
void operator delete(void* memory, std::size_t) noexcept { aq::test::release(memory); }
void operator delete[](void* memory, std::size_t) noexcept { aq::test::release(memory); }

// The linker hands the calls over here (--wrap), and the real ones under their second name.
extern "C" {
int __real_open(const char* path, int flags, mode_t mode);
int __real_close(int handle);
ssize_t __real_read(int handle, void* bytes, size_t size);
ssize_t __real_write(int handle, const void* bytes, size_t size);
int __real_stat(const char* path, struct stat* status);
int __real_fstat(int handle, struct stat* status);
int __real_fsync(int handle);
int __real_fchmod(int handle, mode_t mode);
int __real_fchown(int handle, uid_t owner, gid_t group);
int __real_flock(int handle, int operation);
int __real_ftruncate(int handle, off_t size);
int __real_unlink(const char* path);
int __real_rename(const char* from, const char* to);
ssize_t __real_readlink(const char* path, char* text, size_t size);

int __wrap_open(const char* path, int flags, mode_t mode) {
  return aq::test::strikes("open") ? aq::test::refusal(EMFILE) : __real_open(path, flags, mode);
}
int __wrap_close(int handle) {
  const bool strikes = aq::test::strikes("close");
  const int result = __real_close(handle);  // closed whatever it says
  return strikes ? aq::test::refusal(EIO) : result;
}
ssize_t __wrap_read(int handle, void* bytes, size_t size) {
  return aq::test::strikes("read") ? aq::test::refusal(EIO) : __real_read(handle, bytes, size);
}
/// A full disk takes a part first.
ssize_t __wrap_write(int handle, const void* bytes, size_t size) {
  if (aq::test::strikes("write")) return aq::test::refusal(ENOSPC);
  return __real_write(handle, bytes, std::max<size_t>(size / 2, 1));
}
int __wrap_stat(const char* path, struct stat* status) {
  return aq::test::strikes("stat", false) ? aq::test::refusal(EACCES) : __real_stat(path, status);
}
int __wrap_fstat(int handle, struct stat* status) {
  return aq::test::strikes("fstat", false) ? aq::test::refusal(EIO) : __real_fstat(handle, status);
}
int __wrap_flock(int handle, int operation) {
  return aq::test::strikes("flock") ? aq::test::refusal(ENOLCK) : __real_flock(handle, operation);
}
int __wrap_fsync(int handle) {
  return aq::test::strikes("fsync") ? aq::test::refusal(EDQUOT) : __real_fsync(handle);
}
int __wrap_fchmod(int handle, mode_t mode) {
  return aq::test::strikes("fchmod", false) ? aq::test::refusal(EPERM)
                                            : __real_fchmod(handle, mode);
}
int __wrap_fchown(int handle, uid_t owner, gid_t group) {
  return aq::test::strikes("fchown", false) ? aq::test::refusal(EPERM)
                                            : __real_fchown(handle, owner, group);
}
ssize_t __wrap_readlink(const char* path, char* text, size_t size) {
  return aq::test::strikes("readlink", false) ? aq::test::refusal(EIO)
                                              : __real_readlink(path, text, size);
}
int __wrap_rename(const char* from, const char* to) {
  return aq::test::strikes("rename", false) ? aq::test::refusal(EIO) : __real_rename(from, to);
}
// Those that follow a failure do not fail too, but a process may end at them.
int __wrap_ftruncate(int handle, off_t size) {
  return aq::test::strikes("ftruncate") ? aq::test::refusal(EIO) : __real_ftruncate(handle, size);
}
int __wrap_unlink(const char* path) {
  return aq::test::strikes("unlink", false) ? aq::test::refusal(EIO) : __real_unlink(path);
}
}
