#include "tests/reliability/faults.h"

#include <fcntl.h>
#include <malloc.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <new>

namespace aq::test {
namespace {

bool armed = false;
bool struck = false;
Fault kind = Fault::Refusal;
long callsLeft = 0;
std::size_t allocated = 0;
std::size_t peak = 0;

bool strikes(bool interruptible = true) {
  const bool counts = armed && (interruptible || kind != Fault::Interruption);
  if (!counts || --callsLeft != 0) return false;
  struck = true;
  if (kind == Fault::Kill) ::kill(::getpid(), SIGKILL);
  return true;
}

/// What the system says when it refuses: -1, and why.
int refusal(int error) {
  errno = kind == Fault::Interruption ? EINTR : error;
  return -1;
}

void* allocate(std::size_t size) {
  if (kind == Fault::Refusal && strikes()) throw std::bad_alloc();
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
  armed = true;
}

bool disarm() {
  armed = false;
  return struck;
}

std::size_t peakOfMemory() { return peak; }

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
int __real_rename(const char* from, const char* to);
ssize_t __real_readlink(const char* path, char* text, size_t size);

int __wrap_open(const char* path, int flags, mode_t mode) {
  return aq::test::strikes() ? aq::test::refusal(EMFILE) : __real_open(path, flags, mode);
}
int __wrap_close(int handle) {
  const bool strikes = aq::test::strikes();
  const int result = __real_close(handle);  // closed whatever it says
  return strikes ? aq::test::refusal(EIO) : result;
}
ssize_t __wrap_read(int handle, void* bytes, size_t size) {
  return aq::test::strikes() ? aq::test::refusal(EIO) : __real_read(handle, bytes, size);
}
/// A full disk takes a part first; a kill cannot divide a write.
ssize_t __wrap_write(int handle, const void* bytes, size_t size) {
  if (aq::test::strikes()) return aq::test::refusal(ENOSPC);
  const bool part = aq::test::kind != aq::test::Fault::Kill;
  return __real_write(handle, bytes, part ? std::max<size_t>(size / 2, 1) : size);
}
int __wrap_stat(const char* path, struct stat* status) {
  return aq::test::strikes(false) ? aq::test::refusal(EACCES) : __real_stat(path, status);
}
int __wrap_fstat(int handle, struct stat* status) {
  return aq::test::strikes(false) ? aq::test::refusal(EIO) : __real_fstat(handle, status);
}
int __wrap_fsync(int handle) {
  return aq::test::strikes() ? aq::test::refusal(EDQUOT) : __real_fsync(handle);
}
int __wrap_fchmod(int handle, mode_t mode) {
  return aq::test::strikes(false) ? aq::test::refusal(EPERM) : __real_fchmod(handle, mode);
}
ssize_t __wrap_readlink(const char* path, char* text, size_t size) {
  return aq::test::strikes(false) ? aq::test::refusal(EIO) : __real_readlink(path, text, size);
}
int __wrap_rename(const char* from, const char* to) {
  return aq::test::strikes(false) ? aq::test::refusal(EIO) : __real_rename(from, to);
}
}
