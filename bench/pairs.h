#pragma once

#include <functional>
#include <string>

namespace bench {

/// Adds a pair to the run: `tested`, and `plain`, usually a loop that does the same work without
/// the library. The table shows `name` with the median time of `tested` divided by that of `plain`,
/// times `scale`.
void addPair(const std::string& name, const std::function<void()>& plain,
             const std::function<void()>& tested, double scale = 1);

/// The path of a file in the folder of this run.
std::string fileInFolder(const std::string& name);

/// The bytes of a file, read by system calls.
std::string bytesOf(const std::string& path);

/// Unless `good`, ends the program with a message that `what` failed.
void require(bool good, const char* what);

}  // namespace bench
