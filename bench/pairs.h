#pragma once

#include <functional>
#include <string>

namespace bench {

/// Times `tested` beside `plain`, a loop that does the same work without the library, in one run.
/// Both are called again and again; `name` stands in the table of ratios.
void addPair(const std::string& name, const std::function<void()>& plain,
             const std::function<void()>& tested);

/// A file in a folder of memory, if the system has one.
std::string fileInMemory(const std::string& name);

/// The bytes of a file, by the system's stream.
std::string bytesOf(const std::string& path);

/// Ends the program when a call of the library failed.
void require(bool good, const char* what);

}  // namespace bench
