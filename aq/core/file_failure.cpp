#include "aq/core/file_failure.h"

#include <algorithm>
#include <iterator>
#include <string_view>

#include "aq/core/error.h"

namespace aq {
namespace {

/// A refusal by the operating system, worded as the system's own tools would word it.
struct Refusal {
  std::string_view expected;
  std::string_view before;      // text before the file's name
  std::string_view after = {};  // text after the file's name
};

constexpr Refusal kRefusals[] = {
    {"a file that can be opened", "cannot open "},
    {"a file that can be read", "cannot read "},
    {"a folder that can be read", "cannot read "},
    {"a file that can be written", "cannot write "},
    {"a folder where a temporary file can be created", "cannot replace ",
     " by way of a temporary file"},
    {"a folder that lets the file be replaced", "cannot replace "},
    {"a program that can be run", "", ": cannot run the converter"},
    {"a program that exits with status 0", "", ": the converter failed"},
};

}  // namespace

std::string FileFailure::message() const {
  const auto* const refusal =
      std::find_if(std::begin(kRefusals), std::end(kRefusals),
                   [this](const Refusal& each) { return each.expected == expected; });
  if (refusal != std::end(kRefusals)) {
    const std::string name = file.empty() ? "the file" : escaped(file);
    return std::string(refusal->before).append(name).append(refusal->after) + ": " + found;
  }
  std::string text = escaped(file);
  if (line != 0) text += ", line " + std::to_string(line);
  if (field != 0) text += ", field " + std::to_string(field);
  if (!text.empty()) text += ": ";
  return text + "expected " + expected + ", found " + found;
}

}  // namespace aq
