// Numbers, lines and files of hostile size: memory stays proportional to the size of the file, and
// a failure names its line.
#include <aq/aq.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <thread>

#include "tests/reliability/faults.h"
#include "tests/support/formats.h"
#include "tests/support/samples.h"

namespace aq {
namespace {

namespace fs = std::filesystem;

/// The most memory that `work` holds at any time.
template <class Work>
std::size_t memoryOf(const Work& work) {
  test::arm(test::Fault::Refusal, -1);
  work();
  test::disarm();
  return test::peakOfMemory();
}

/// Memory for the reader's block and for objects, whatever the size of the file.
constexpr std::size_t kBlock = std::size_t{160} << 10;

/// Reads `content` as `format`. Expects the read to take less memory than four times the size of
/// `content` plus `kBlock`, and any failure to have a line number.
void readModestly(const test::FormatCalls& format, const std::string& content) {
  const test::Folder folder;
  const std::string path = folder.with("a", content);
  test::Outcome outcome;
  const std::string begin = content.substr(0, 2000);
  EXPECT_LT(memoryOf([&] { outcome = format.read(path); }), 4 * content.size() + kBlock) << begin;
  EXPECT_TRUE(outcome.sound) << begin;
  const bool hasLines = format.code != "HP3565";  // a recording has no lines
  if (outcome.failure && hasLines) {
    EXPECT_GT(outcome.failure->line, 0U) << begin;
  }
}

TEST(Sizes, NumbersAtEveryEdgeInEveryHeaderAndField) {
  const std::array kEdges{"0",
                          "1",
                          "-1",
                          "32767",
                          "32768",
                          "65536",
                          "2147483647",
                          "2147483648",
                          "-32769",
                          "9223372036854775808",
                          "18446744073709551616"};
  test::forSamples("good", [&](const std::string& name, const fs::path& sample) {
    const std::string content = test::contentOf(sample);
    for (std::size_t at = 0; at < content.size(); ++at) {
      const std::size_t end = std::min(content.find_first_not_of("0123456789", at), content.size());
      if (end == at || (at != 0 && content[at - 1] >= '0' && content[at - 1] <= '9')) continue;
      for (const char* const edge : kEdges) {
        readModestly(test::kFormats.at(name), std::string(content).replace(at, end - at, edge));
      }
    }
  });
}

TEST(Sizes, LongLinesAndManyOfThem) {
  constexpr std::size_t kSize = std::size_t{1} << 20;
  test::forSamples("good", [](const std::string& name, const fs::path& sample) {
    SCOPED_TRACE(name);
    const auto& format = test::kFormats.at(name);
    for (const std::string& before : {std::string(), test::contentOf(sample)}) {
      for (const char byte : {',', '1', '"', '\0'}) {
        readModestly(format, before + std::string(kSize, byte));
      }
      readModestly(format, before + std::string(10'000'000, '\n'));
    }
  });
  const test::Folder folder;
  AQ_DataASCII text;
  const std::string lines = folder.with("lines", std::string(kSize, '\n'));
  // Even the shortest line needs a string and, if split into fields, a collection of one string.
  EXPECT_LT(memoryOf([&] { EXPECT_EQ(text.readLines(lines), AQ_DATA_OK); }), 100 * kSize);
  EXPECT_LT(memoryOf([&] { EXPECT_EQ(text.readFields(lines), AQ_DATA_OK); }), 250 * kSize);
  EXPECT_EQ(text.Fields()->Count(), static_cast<std::int32_t>(kSize));
  const std::string line = folder.with("line", std::string(kSize, ','));
  EXPECT_LT(memoryOf([&] { EXPECT_EQ(text.readFields(line), AQ_DATA_OK); }), 80 * kSize);
}

/// Each line becomes an object, such as a spectrum or a position, so the shortest lines need more
/// than four times their size in memory.
TEST(Sizes, TheShortestRecords) {
  constexpr std::size_t kARecord = 300;
  constexpr int kRecords = 32000;
  const std::map<std::string, std::string> shortest = {
      {"spectral-time-history", ",::,0,0,0,0\n"},
      {"masking-map", ",--,--,--,0\n"},
      {"position-time-history", "::,0,0,0\n"},
      {"geometric-time-history", ",::,::,0,0,0,0,0,0,0\n"}};
  const auto expectMemory = [](const std::string& name, const std::string& content) {
    const test::Folder folder;
    const std::string path = folder.with("a", content);
    std::optional<FileFailure> failure;
    const std::size_t memory =
        memoryOf([&] { failure = test::kFormats.at(name).read(path).failure; });
    EXPECT_LT(memory, 4 * content.size() + kBlock + kARecord * kRecords) << name;
    EXPECT_FALSE(failure) << failure->message();
  };
  test::forSamples("good", [&](const std::string& name, const fs::path& sample) {
    if (!shortest.contains(name)) return;
    std::string content = test::contentOf(sample);
    const std::string row = shortest.at(name);
    content.resize(content.rfind('\n', content.size() - 2) + 1);
    for (int record = kRecords; record > 0; --record) {  // descending numbers need a lookup table
      content += (row[0] == ',' ? std::to_string(record) : "") + row;
    }
    expectMemory(name, content);
    const std::string kComments = "NumberOfCommentLines**,";
    const std::size_t comments = content.find(kComments) + kComments.size();
    const int before = std::stoi(content.substr(comments));
    content.replace(comments, content.find('\n', comments) - comments,
                    std::to_string(kRecords + before) + std::string(kRecords, '\n'));
    expectMemory(name, content);
  });
}

TEST(Sizes, ALineOfTwoGigabytes) {
  constexpr std::uintmax_t kSize = std::uintmax_t{2} << 30;
  const auto free = static_cast<std::uintmax_t>(::sysconf(_SC_AVPHYS_PAGES)) *
                    static_cast<std::uintmax_t>(::sysconf(_SC_PAGESIZE));
  if (free < 4 * kSize) GTEST_SKIP() << "needs 8 GiB of free memory";
  const test::Folder folder;
  const std::string path = folder.with("a", "FileType**,");
  fs::resize_file(path, kSize);  // adds zeros, which take no space on the disk
  test::Outcome outcome;
  const auto read = [&] { outcome = test::kFormats.at("spectral-time-history").read(path); };
  EXPECT_LT(memoryOf(read), 4 * kSize);
  ASSERT_TRUE(outcome.failure.has_value());
  EXPECT_EQ(outcome.failure->line, 1U);
}

TEST(Sizes, AFileThatGrowsAndShrinksWhileItIsRead) {
  const test::Folder folder;
  const std::string sample =
      test::contentOf(test::kData / "spectral-time-history/good/three-records.csv");
  const std::string row = sample.substr(sample.rfind('\n', sample.size() - 2) + 1);
  const std::string path = folder.with("a", sample);
  std::jthread changer([&](const std::stop_token& stop) {
    while (!stop.stop_requested()) {
      std::ofstream(path, std::ios::binary | std::ios::app) << row << row << row;
      if (fs::file_size(path) > 300000) fs::resize_file(path, sample.size() / 2);
      if (fs::file_size(path) < sample.size()) std::ofstream(path, std::ios::binary) << sample;
    }
  });
  for (int round = 0; round < 300; ++round) {
    const auto outcome = test::kFormats.at("spectral-time-history").read(path);
    EXPECT_TRUE(outcome.sound);
    EXPECT_TRUE(!outcome.failure || outcome.failure->line > 0);
  }
}

}  // namespace
}  // namespace aq
