#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "aq/core/export.h"

namespace aq {

/// The text of a measurement file as it was before other programs changed it, as far as that is
/// certain.
struct Mended {
  std::string text;
  std::vector<std::string> done;  ///< what was mended, in words; empty when the text is as it was
  std::vector<std::string> left;  ///< what looks changed, but may mean several things, and so stays
};

/// Takes back what other programs do to these files on their way: UTF-16, a byte order mark, lines
/// that end in carriage returns alone, a spreadsheet's semicolons or tabs, quotes and filled up
/// lines, blank lines among and after the data, decimal commas. Text that could mean several things
/// stays as it is. A comment that says what was done, from the file `name`, is added where the kind
/// has comments; `done` is what the caller has done already, as unpacking. Bytes that are an
/// analyzer recording stay as they are.
[[nodiscard]] AQ_API Mended mendText(std::string_view bytes, std::string_view name,
                                     std::vector<std::string> done = {});

}  // namespace aq
