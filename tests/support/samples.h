#pragma once

#include <gtest/gtest.h>

#include <filesystem>
#include <string>

#include "tests/support/files.h"

namespace aq::test {

/// Calls `check(format, sample)` for every sample in `folder` of every format.
template <class Check>
void forSamples(const char* folder, const Check& check) {
  for (const auto& kind : std::filesystem::directory_iterator(kData)) {
    const std::string name = kind.path().filename().string();
    for (const auto& sample : std::filesystem::directory_iterator(kind.path() / folder)) {
      const auto ending = sample.path().extension();
      if (ending != ".csv" && ending != ".spc" && ending != ".dat") continue;
      SCOPED_TRACE(sample.path().string());
      check(name, sample.path());
    }
  }
}

}  // namespace aq::test
