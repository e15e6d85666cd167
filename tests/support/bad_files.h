#pragma once

#include <aq/core/file_failure.h>
#include <gtest/gtest.h>

#include <functional>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include "tests/support/files.h"

namespace aq::test {

/// A damaged file of `tests/data/<format>/bad`, and where its read must fail.
struct Bad {
  const char* name;
  std::size_t line;
  std::size_t field;
  const char* found;
};

/// Reads every file of the folder, hands it to `read`, and compares the failure with its row. Every
/// file has a row, and every row a file.
inline void expectFailures(
    const std::string& format, const std::vector<Bad>& rows,
    const std::function<std::optional<FileFailure>(const std::string& path)>& read) {
  std::map<std::string, Bad> byName;
  for (const Bad& row : rows) byName.emplace(row.name, row);
  const auto folder = kData / format / "bad";
  for (const auto& file : std::filesystem::directory_iterator(folder)) {
    const std::string name = file.path().stem().string();
    ASSERT_TRUE(byName.contains(name)) << name << " has no row";
    const Bad row = byName.at(name);
    byName.erase(name);
    const auto failure = read(file.path().string());
    ASSERT_TRUE(failure.has_value()) << name << " reads";
    EXPECT_EQ(failure->file, file.path().string());
    EXPECT_EQ(failure->line, row.line) << failure->message();
    EXPECT_EQ(failure->field, row.field) << failure->message();
    EXPECT_EQ(failure->found, row.found) << failure->message();
  }
  EXPECT_TRUE(byName.empty()) << byName.begin()->first << " has no file";
}

}  // namespace aq::test
