#include "aq/check/same_levels.h"

#include <filesystem>

#include "aq/check/reporter.h"

namespace aq {

void SameLevels::see(const std::string& path, const Checked& checked, const FindingSink& report) {
  if (!checked.levels) return;
  const auto [first, isNew] = first_.try_emplace(*checked.levels, path);
  std::error_code error;
  if (isNew || std::filesystem::equivalent(first->second, path, error)) return;
  Reporter reporter(report);
  reporter(Kind::SameLevels, {}, "all levels are those of \"" + first->second + '"');
  reporter.finish();
}

}  // namespace aq
