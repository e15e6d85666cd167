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
std::array<char, 1024> calls;  // not a string, whose memory would be counted

bool strikesNext() {
  if (--callsLeft != 0) return false;
  struck = true;
  if (kind == Fault::Kill) ::kill(::getpid(), SIGKILL);
  return true;
}

/// Notes a system call; returns whether the fault hits it.
bool strikes(std::string_view call, bool interruptible = true) {
  if (!armed) return false;
  const std::size_t used = std::strlen(calls.data());
  if (used + call.size() + 1 < calls.size()) {
    calls[call.copy(&calls[used], call.size()) + used] = ' ';
  }
  return (interruptible || kind != Fault::Interruption) && strikesNext();
}

/// Sets errno and returns -1, as a system call that fails does.
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

// The linker redirects the calls here (--wrap); the real functions have the prefix __real_.
#define AQ_WRAPPED(Result, call, parameters)  \
  extern "C" Result __real_##call parameters; \
  extern "C" Result __wrap_##call parameters

// A call that fails when hit: with `error`, or with EINTR if it is interrupted.
#define AQ_WRAP(Result, call, error, interruptible, parameters, arguments) \
  AQ_WRAPPED(Result, call, parameters) {                                   \
    const bool strikes = aq::test::strikes(#call, interruptible);          \
    return strikes ? aq::test::refusal(error) : __real_##call arguments;   \
  }

AQ_WRAP(int, open, EMFILE, true, (const char* path, int flags, mode_t mode), (path, flags, mode))
AQ_WRAP(ssize_t, read, EIO, true, (int handle, void* bytes, size_t size), (handle, bytes, size))
AQ_WRAP(int, stat, EACCES, false, (const char* path, struct stat* status), (path, status))
AQ_WRAP(int, fstat, EIO, false, (int handle, struct stat* status), (handle, status))
AQ_WRAP(int, flock, ENOLCK, true, (int handle, int operation), (handle, operation))
AQ_WRAP(int, fsync, EDQUOT, true, (int handle), (handle))
AQ_WRAP(int, fchmod, EPERM, false, (int handle, mode_t mode), (handle, mode))
AQ_WRAP(int, fchown, EPERM, false, (int handle, uid_t owner, gid_t group), (handle, owner, group))
AQ_WRAP(ssize_t, readlink, EIO, false, (const char* path, char* text, size_t size),
        (path, text, size))
AQ_WRAP(int, rename, EIO, false, (const char* from, const char* to), (from, to))
// These calls only follow a failure, and a run has one fault, so the fault never hits them.
AQ_WRAP(int, ftruncate, EIO, true, (int handle, off_t size), (handle, size))
AQ_WRAP(int, unlink, EIO, false, (const char* path), (path))

AQ_WRAPPED(int, close, (int handle)) {
  const bool strikes = aq::test::strikes("close");
  const int result = __real_close(handle);  // closed in any case
  return strikes ? aq::test::refusal(EIO) : result;
}
/// Writes only part of the bytes at a time, as when a disk fills up.
AQ_WRAPPED(ssize_t, write, (int handle, const void* bytes, size_t size)) {
  if (aq::test::strikes("write")) return aq::test::refusal(ENOSPC);
  return __real_write(handle, bytes, std::max<size_t>(size / 2, 1));
}
