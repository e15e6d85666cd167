#pragma once

#include <aq/check/check_file.h>
#include <aq/check/finding.h>

#include <cstddef>
#include <string>
#include <vector>

#include "tools/aqdata/session.h"

namespace aqdata {

/// The findings of one file. Counts all, but keeps only a limited number of each kind, so that
/// results waiting to be printed stay small.
struct FileFindings {
  struct Count {
    const aq::FindingKind* kind;
    std::size_t count = 0;
    std::size_t kept = 0;
  };
  std::vector<Count> counts = {};       // in the order of their first findings
  std::vector<aq::Finding> whole = {};  // findings about the file as a whole
  std::vector<aq::Finding> kept = {};   // the others, in line order

  /// Counts a finding, and keeps it if it is one of the first `limit` of its kind.
  void take(const aq::Finding& finding, std::size_t limit);

  /// The kept findings; those about the whole file come first.
  [[nodiscard]] std::vector<const aq::Finding*> listed() const;
};

/// The place as text, such as ", line 22, field 4, record 1, band 17"; empty for the whole file.
[[nodiscard]] std::string placeText(const aq::FindingPlace& place);

/// The finding as JSON; parts that its place lacks are left out.
[[nodiscard]] Json findingJson(const aq::Finding& finding);

}  // namespace aqdata
