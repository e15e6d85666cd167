#pragma once

#include <string>

namespace aq::test {

/// Every value that the library returns for a file, one line per part of the file. `format` is one
/// of `kFormats` in values.cpp, or `ASCII:` with its options.
[[nodiscard]] std::string valuesOf(const std::string& format, const std::string& path);

}  // namespace aq::test
