#pragma once

#include <string>
#include <string_view>

#include "tools/aqdata/session.h"

namespace aqdata::report {

/// A page of runs in one self-contained file. Text from files is treated as data throughout: it
/// never becomes markup, and the page runs only its own scripts, identified by digest.
class Page {
 public:
  explicit Page(std::string_view title);

  /// Adds the document of a run.
  void addRun(const Json& document);

  /// The finished page. `season` describes all runs; its member `runs` holds a summary of each.
  [[nodiscard]] std::string finished(const Json& season) &&;

 private:
  void addData(std::string_view id, const Json& document);

  std::string text_;
  std::size_t runs_ = 0;
};

}  // namespace aqdata::report
