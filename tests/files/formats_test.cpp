// What holds for every format: a good sample comes back from a read and a write byte by byte, a bad
// one fails with the message that its folder lists, and a damaged one reads or fails with a place.
#include "tests/support/formats.h"

#include <aq/aq.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <map>
#include <random>

#include "tests/support/files.h"
#include "tests/support/samples.h"

namespace aq {
namespace {

using test::Format;
using test::forSamples;
using test::kFormats;
using test::Outcome;

TEST(Formats, GoodSamplesComeBackByteByByte) {
  const test::FixedInformation fixed;
  const test::Folder folder;
  forSamples("good", [&](const std::string& name, const std::filesystem::path& sample) {
    const Format& format = kFormats.at(name);
    const Outcome outcome = format.read(sample.string());
    EXPECT_TRUE(!outcome.failure.has_value() && outcome.sound);
    if (!format.rewrite) return;
    const std::string copy = folder.file(sample.filename().string());
    EXPECT_EQ(format.rewrite(sample.string(), copy), AQ_DATA_OK);
    EXPECT_EQ(test::contentOf(copy), test::contentOf(sample));
  });
}

/// A line of `failures.txt` is the message without its folder, then in brackets what the read
/// handed out.
TEST(Formats, BadSamplesFailAsListed) {
  std::map<std::string, std::vector<std::string>> found;
  forSamples("bad", [&](const std::string& name, const std::filesystem::path& sample) {
    const Outcome outcome = kFormats.at(name).read(sample.string());
    ASSERT_TRUE(outcome.failure.has_value() && outcome.sound);
    const std::string message = outcome.failure->message();
    const std::string folder = sample.parent_path().string() + '/';
    ASSERT_TRUE(message.starts_with(folder)) << message;
    found[name].push_back(message.substr(folder.size()) + " [ " + outcome.handedOut + ']');
  });
  EXPECT_EQ(found.size(), kFormats.size());
  for (auto& [name, lines] : found) {
    std::sort(lines.begin(), lines.end());
    EXPECT_EQ(test::textOf(lines), test::contentOf(test::kData / name / "bad" / "failures.txt"));
  }
}

/// Damages one sample in every way, and counts what came of it.
class Damage {
 public:
  Damage(const Format& format, std::string bytes) : format_(format), bytes_(std::move(bytes)) {}

  void check(const std::string& damaged) {
    const auto lines = test::linesOf(damaged).size();
    const std::string path = folder_.with("in", damaged);
    static_cast<void>(kindOfFile(path));  // never throws
    const auto [failure, handedOut, sound] = format_.read(path);
    ASSERT_TRUE(sound);
    ++tried_;
    if (!failure) return;
    ++failed_;
    ASSERT_GE(failure->line, 1U);
    ASSERT_LE(failure->line, lines + 1) << failure->message();
    ASSERT_FALSE(failure->expected.empty() || failure->found.empty());
  }

  void cutEverywhere() {
    for (std::size_t size = 0; size < bytes_.size(); ++size) check(bytes_.substr(0, size));
  }

  void breakEveryCell() {
    const std::string junk[] = {"",      "x", "1e999", "99999", "**", "\"", std::string(1, '\0'),
                                "-32768"};
    const auto lines = test::linesOf(bytes_);
    for (std::size_t i = 0; i < lines.size(); ++i) {
      std::size_t at = 0;
      for (int cell = 0; at != std::string::npos && cell < 8; ++cell) {
        const std::size_t end = std::min(lines[i].find(',', at), lines[i].size());
        for (const std::string& text : junk) {
          auto damaged = lines;
          damaged[i].replace(at, end - at, text);
          check(test::textOf(damaged));
        }
        at = end == lines[i].size() ? std::string::npos : end + 1;
      }
    }
  }

  void dropAndDoubleLines() {
    const auto lines = test::linesOf(bytes_);
    for (std::size_t i = 0; i < lines.size(); ++i) {
      auto damaged = lines;
      damaged.erase(damaged.begin() + static_cast<long>(i));
      check(test::textOf(damaged));
      damaged.insert(damaged.begin() + static_cast<long>(i), 2, lines[i]);
      check(test::textOf(damaged));
    }
  }

  void flipBytes() {
    std::mt19937 random(5);
    for (int round = 0; round < 1000; ++round) {
      std::string damaged = bytes_;
      for (unsigned flips = 1 + random() % 4; flips != 0; --flips) {
        damaged[random() % damaged.size()] = static_cast<char>(random());
      }
      check(damaged);
    }
  }

  void expectBothOutcomes() const {
    EXPECT_GT(failed_, 0);
    EXPECT_GT(tried_, failed_);
  }

 private:
  test::Folder folder_;
  const Format& format_;
  std::string bytes_;
  int tried_ = 0;
  int failed_ = 0;
};

TEST(Formats, DamagedSamplesReadOrFailWithAPlace) {
  forSamples("good", [](const std::string& name, const std::filesystem::path& sample) {
    Damage damage(kFormats.at(name), test::contentOf(sample));
    damage.cutEverywhere();
    damage.breakEveryCell();
    damage.dropAndDoubleLines();
    damage.flipBytes();
    damage.expectBothOutcomes();
  });
}

/// A measured landing, from the folder that AQ_FIELD_DATA names.
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
  EXPECT_EQ(test::readTracking(path("landing.tspi.csv")).handedOut, "8 dropped ");
  EXPECT_FALSE(test::readMicrophone(path("landing.mic.csv")).failure.has_value());
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
