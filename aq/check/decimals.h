#pragma once

#include <cstddef>
#include <map>
#include <string>
#include <string_view>
#include <vector>

#include "aq/check/finding.h"
#include "aq/check/reporter.h"

namespace aq {

/// The numbers of decimals in a column. Trailing zeros show that the program always writes the same
/// number; a number with fewer decimals has then lost digits. Ignores a plain 0 and a plain 9999,
/// which mean no value.
class Decimals {
 public:
  void see(std::string_view field, const FindingPlace& place);

  /// Reports each number that has fewer than nearly all others, except the one at `told`.
  void report(const FindingPlace& told, const Reporter& report) const;

 private:
  struct Seen {
    std::size_t count = 0;
    bool endsInZero = false;               // of any
    std::vector<FindingPlace> first = {};  // places that may be reported
  };

  std::map<std::size_t, Seen> seen_;  // by the number of decimals
  std::size_t count_ = 0;
};

/// As in "1 decimal".
std::string decimalsText(std::size_t count);

}  // namespace aq
