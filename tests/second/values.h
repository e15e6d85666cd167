#pragma once

#include <string>

namespace aq::test {

/// What the library returns for a file, as lines of a key and its values. `format` is a key of
/// `kFormats` in values.cpp, or `ASCII:` followed by the options of `printASCII`.
[[nodiscard]] std::string valuesOf(const std::string& format, const std::string& path);

}  // namespace aq::test
