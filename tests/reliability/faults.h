#pragma once

#include <cstddef>
#include <string>

// Makes one system call or allocation in the library fail, or kills the process at a system call.
namespace aq::test {

enum class Fault {
  Refusal,       // the call fails, or memory runs out
  Interruption,  // the call must be repeated; does not apply to allocations
  Kill,          // the process ends at the call; does not apply to allocations
};

/// Applies the fault to the n-th call from now; -1 for no fault. Allocations count only
/// for a refusal.
void arm(Fault fault, long nth);

/// Cancels `arm`; returns whether the fault happened.
bool disarm();

/// The largest number of bytes allocated at any one time between `arm` and `disarm`.
std::size_t peakOfMemory();

/// The names of the system calls between `arm` and `disarm`, each followed by a blank; those that
/// do not fit into 1024 bytes are left out.
std::string callsMade();

}  // namespace aq::test
