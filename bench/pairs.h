#pragma once

#include <functional>
#include <string>

namespace bench {

/// Times `tested` beside `plain`, a loop that does the same work without the library, in one run.
/// Both are called again and again; `name` stands in the table, with the ratio of their medians
/// times `scale`.
void addPair(const std::string& name, const std::function<void()>& plain,
             const std::function<void()>& tested, double scale = 1);

/// A file in the folder of this run.
std::string fileInFolder(const std::string& name);

/// The bytes of a file, by the system's calls.
std::string bytesOf(const std::string& path);

/// Ends the program when a call of the library failed.
void require(bool good, const char* what);

}  // namespace bench
