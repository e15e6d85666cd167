#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "aq/core/export.h"

namespace aq {

/// The text of a measurement file as it was before other programs changed it, as far as that is
/// unambiguous.
struct Mended {
  std::string text;
  std::vector<std::string> done;  ///< the caller's `done`, then what was mended, in words
  std::vector<std::string> left;  ///< what seems to have been changed, but was left as it was
};

/// Undoes the changes that other programs make to measurement files: UTF-16, a byte order mark,
/// carriage returns as line endings, a spreadsheet's semicolons or tabs, quotes and padding, blank
/// lines among and after the data or after every line, and decimal commas. Leaves ambiguous text
/// unchanged. If anything was changed and the format has comments, adds one that gives the file's
/// `name` and lists the changes; `done` lists those that the caller has already made, such as
/// unpacking. Leaves analyzer recordings unchanged.
[[nodiscard]] AQ_API Mended mendText(std::string_view bytes, std::string_view name,
                                     std::vector<std::string> done = {});

}  // namespace aq
