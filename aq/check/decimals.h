#pragma once

#include <cstddef>
#include <map>
#include <string>
#include <string_view>
#include <vector>

#include "aq/check/finding.h"
#include "aq/check/reporter.h"

namespace aq {

/// Counts the decimals of the numbers in one or more columns. Trailing zeros show that the file was
/// written with a fixed number of decimals, so a number with fewer has lost digits. Ignores a plain
/// 0 and a plain 9999, which are often placeholders.
class Decimals {
 public:
  void see(std::string_view field, const FindingPlace& place);

  /// Reports numbers with fewer decimals than nearly all others, except one at `told`, where a
  /// finding was already reported.
  void report(const FindingPlace& told, const Reporter& report) const;

 private:
  struct Seen {
    std::size_t count = 0;
    bool endsInZero = false;               // whether any of them ends in 0
    std::vector<FindingPlace> first = {};  // the first 1000 places
  };

  std::map<std::size_t, Seen> seen_;  // by the number of decimals
  std::size_t count_ = 0;
};

/// A count of decimals in words, such as "1 decimal".
std::string decimalsText(std::size_t count);

}  // namespace aq
