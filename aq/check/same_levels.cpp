#include "aq/check/same_levels.h"

#include "aq/check/reporter.h"
#include "aq/core/platform.h"

namespace aq {

void SameLevels::see(const std::string& path, const Checked& checked, const FindingSink& report) {
  if (!checked.levels) return;
  const auto [first, isNew] = first_.try_emplace(*checked.levels, path);
  if (isNew || platform::areOneFile(first->second, path)) return;
  Reporter reporter(report);
  reporter(Kind::SameLevels, {}, "all levels equal those of \"" + first->second + '"');
  reporter.finish();
}

}  // namespace aq
