// Eight threads read the samples, write files of their own and append to a common one, while
// another thread replaces the file information service.
#include <aq/aq.h>
#include <aq/check/check_file.h>
#include <gtest/gtest.h>

#include <thread>

#include "tests/support/formats.h"
#include "tests/support/samples.h"

namespace aq {
namespace {

/// Reads the samples of every format repeatedly; rewrites and checks those that can be written, and
/// appends a line to the common file for each. Returns the number of failures.
int rewriteAll(const test::Folder& folder, int worker) {
  int wrong = 0;
  for (int round = 0; round < 5; ++round) {
    test::forSamples("good", [&](const std::string& name, const std::filesystem::path& sample) {
      const auto& format = test::kFormats.at(name);
      if (format.read(sample.string()).failure) ++wrong;
      if (!format.rewrite) return;
      const std::string copy = folder.file(std::to_string(worker) + name);
      const bool written = format.rewrite(sample.string(), copy) == AQ_DATA_OK;
      if (!written || format.read(copy).failure) ++wrong;
      checkFile(copy, [&](const Finding&) {});
      AQ_DataASCII line;
      line.Lines()->Add(std::to_string(worker));
      if (line.appendLines(folder.file("common")) != AQ_DATA_OK) ++wrong;
    });
  }
  return wrong;
}

TEST(Threads, ReadAndWriteDifferentFilesWhileTheServiceChanges) {
  constexpr std::size_t kWorkers = 8;
  const test::Folder folder;
  std::array<int, kWorkers> wrong{};
  std::jthread changer([](const std::stop_token& stop) {
    while (!stop.stop_requested()) const test::FixedInformation fixed;
  });
  std::vector<std::jthread> workers;
  for (std::size_t i = 0; i < kWorkers; ++i) {
    workers.emplace_back([&, i] { wrong[i] = rewriteAll(folder, static_cast<int>(i)); });
  }
  workers.clear();
  for (const int count : wrong) EXPECT_EQ(count, 0);
  AQ_DataASCII common;
  ASSERT_EQ(common.readLines(folder.file("common")), AQ_DATA_OK);
  EXPECT_EQ(common.Lines()->Count() % (5 * static_cast<int>(kWorkers)), 0);
  for (const std::string& line : *common.Lines()) EXPECT_EQ(line.size(), 1U);
}

}  // namespace
}  // namespace aq
