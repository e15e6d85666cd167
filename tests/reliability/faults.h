#pragma once

#include <cstddef>
#include <string>

// Makes one call fail that the library, linked into this program, makes to the system or for
// memory.
namespace aq::test {

enum class Fault {
  Refusal,       // the call fails, memory runs out
  Interruption,  // the call is to be repeated; memory is not concerned
  Kill,          // the process ends at the call; memory is not concerned
};

/// Lets the n-th call from now on suffer a fault.
void arm(Fault fault, long nth);

/// Ends that; gives whether the fault struck.
bool disarm();

/// The most bytes that were allocated at once since `arm`.
std::size_t peakOfMemory();

/// The names of the calls to the system since then, each with a blank behind it.
std::string callsMade();

}  // namespace aq::test
