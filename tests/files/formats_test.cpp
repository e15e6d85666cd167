// Tests for every format: a good sample has the listed values and, if its format can be written, is
// written back byte for byte; a bad one fails with the message that its folder lists.
#include "tests/support/formats.h"

#include <aq/aq.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <map>

#include "tests/second/values.h"
#include "tests/support/files.h"
#include "tests/support/samples.h"

namespace aq {
namespace {

using test::FormatCalls;
using test::forSamples;
using test::kFormats;
using test::Outcome;

TEST(Formats, GoodSamplesComeBackByteByByte) {
  const test::FixedInformation fixed;
  const test::Folder folder;
  forSamples("good", [&](const std::string& name, const std::filesystem::path& sample) {
    const FormatCalls& format = kFormats.at(name);
    const Outcome outcome = format.read(sample.string());
    EXPECT_TRUE(!outcome.failure.has_value() && outcome.sound);
    if (!format.rewrite) return;
    const std::string copy = folder.file(sample.filename().string());
    EXPECT_EQ(format.rewrite(sample.string(), copy), AQ_DATA_OK);
    EXPECT_EQ(test::contentOf(copy), test::contentOf(sample));
  });
}

/// The `.values` file of a good sample lists everything that is read from it.
TEST(Formats, GoodSamplesHaveTheListedValues) {
  forSamples("good", [](const std::string& name, std::filesystem::path sample) {
#ifdef _WIN32  // levels of recordings are computed with the system's logarithm
    if (name == "analyzer-recording") return;
#endif
    const std::string found = test::valuesOf(kFormats.at(name).code, sample.string());
    EXPECT_EQ(found, test::contentOf(sample.replace_extension("values")));
  });
}

/// Each line of `failures.txt` has the message without the folder, and in brackets what the failed
/// read returned.
TEST(Formats, BadSamplesFailAsListed) {
  std::map<std::string, std::vector<std::string>> found;
  forSamples("bad", [&](const std::string& name, const std::filesystem::path& sample) {
    const Outcome outcome = kFormats.at(name).read(sample.string());
    ASSERT_TRUE(outcome.failure.has_value() && outcome.sound);
    EXPECT_TRUE(outcome.failure->line != 0 || outcome.failure->field == 0);
    const std::string message = outcome.failure->message();
    const std::string folder = (sample.parent_path() / "").string();
    ASSERT_TRUE(message.starts_with(folder)) << message;
    found[name].push_back(message.substr(folder.size()) + " [ " + outcome.handedOut + ']');
  });
  EXPECT_EQ(found.size(), kFormats.size());
  for (auto& [name, lines] : found) {
    std::sort(lines.begin(), lines.end());
    EXPECT_EQ(test::textOf(lines), test::contentOf(test::kData / name / "bad" / "failures.txt"));
  }
}

/// Tests with the files from a measured landing, in the folder that AQ_FIELD_DATA names.
class FieldData : public testing::Test {
 protected:
  void SetUp() override {
    const char* const folder = std::getenv("AQ_FIELD_DATA");
    if (folder == nullptr) GTEST_SKIP() << "AQ_FIELD_DATA is not set";
    folder_ = folder;
  }
  [[nodiscard]] std::string path(const std::string& name) const {
    return (folder_ / name).string();
  }

 private:
  std::filesystem::path folder_;
};

TEST_F(FieldData, EveryFileReadsAndIsStableFromItsSecondWriteOn) {
  const test::FixedInformation fixed;
  const test::Folder folder;
  const std::pair<const char*, const char*> files[] = {
      {"spectral-time-history", "landing.sth.csv"},   {"masking-map", "landing.mask.csv"},
      {"position-time-history", "landing.pth.csv"},   {"geometric-time-history", "landing.gth.csv"},
      {"spectrum-record", "landing.ambient.ssr.csv"}, {"spectrum-record", "turbofan.ssr.csv"},
      {"variable-initialization", "landing.ini.csv"}};
  for (const auto& [name, file] : files) {
    const auto& rewrite = kFormats.at(name).rewrite;
    ASSERT_EQ(rewrite(path(file), folder.file(file)), AQ_DATA_OK) << file;
    const std::string once = test::contentOf(folder.file(file));
    ASSERT_EQ(rewrite(folder.file(file), folder.file(file)), AQ_DATA_OK);
    EXPECT_EQ(test::contentOf(folder.file(file)), once);
  }
  EXPECT_EQ(kFormats.at("tracking").read(path("landing.tspi.csv")).handedOut, "8 dropped ");
  EXPECT_FALSE(
      kFormats.at("microphone-position").read(path("landing.mic.csv")).failure.has_value());
}

TEST_F(FieldData, TheMapGivesItsLastGoodBands) {
  AQ_DataSTH file;
  AQ_DataMask mapFile;
  std::shared_ptr<AQ_HeaderSTH> header;
  std::shared_ptr<AQ_SpectralTimeHistory> history;
  std::shared_ptr<AQ_HeaderMask> mapHeader;
  std::shared_ptr<AQ_MaskMap> map;
  ASSERT_EQ(file.readFile(path("landing.sth.csv"), header, history), AQ_DATA_OK);
  ASSERT_EQ(mapFile.readFile(path("landing.mask.csv"), mapHeader, map), AQ_DATA_OK);
  EXPECT_EQ(history->Count(), 78);
  ASSERT_TRUE(history->EncompassesMask(*map));
  history->setLGB(*map);
  for (std::int16_t record = 1; record <= 78; ++record) {
    const float lastGood = history->spectrum(record)->Metric()->LGB();
    EXPECT_EQ(lastGood, static_cast<float>(map->Row(record)->LGB())) << record;
  }
}

}  // namespace
}  // namespace aq
