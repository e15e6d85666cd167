#pragma once

#include <cstddef>
#include <string>

// Makes one system call or allocation of the library, linked into this program, fail.
namespace aq::test {

enum class Fault {
  Refusal,       // the call fails, or memory runs out
  Interruption,  // the call must be repeated; does not apply to allocations
  Kill,          // the process ends at the call; does not apply to allocations
};

/// Makes the n-th call from now fail.
void arm(Fault fault, long nth);

/// Cancels `arm`; returns whether the fault happened.
bool disarm();

/// The largest number of bytes allocated at any one time since `arm`.
std::size_t peakOfMemory();

/// The names of the system calls since `arm`, each followed by a blank.
std::string callsMade();

}  // namespace aq::test
