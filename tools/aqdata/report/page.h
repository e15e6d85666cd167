#pragma once

#include <string>
#include <string_view>

#include "tools/aqdata/session.h"

namespace aqdata::report {

/// A page of runs in one file that refers to nothing outside it. Text of files is data everywhere
/// in it: the page has no markup but its own, and runs no script but those that it names by digest.
class Page {
 public:
  explicit Page(std::string_view title);

  /// A run's document, after that of the run before.
  void addRun(const Json& document);

  /// The page, with what `season` says of all runs: `runs`, the summary of each.
  [[nodiscard]] std::string finished(const Json& season) &&;

 private:
  void addData(std::string_view id, const Json& document);

  std::string text_;
  std::size_t runs_ = 0;
};

}  // namespace aqdata::report
