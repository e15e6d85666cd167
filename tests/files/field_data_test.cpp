// A measured landing, from the folder that AQ_FIELD_DATA names.
#include <aq/aq.h>
#include <gtest/gtest.h>

#include <cstdlib>

#include "tests/support/files.h"

namespace aq {
namespace {

class FieldData : public testing::Test {
 protected:
  void SetUp() override {
    const char* const folder = std::getenv("AQ_FIELD_DATA");
    if (folder == nullptr) GTEST_SKIP() << "AQ_FIELD_DATA is not set";
    folder_ = folder;
  }

  [[nodiscard]] std::string path(const char* name) const { return (folder_ / name).string(); }

 private:
  std::filesystem::path folder_;
};

TEST_F(FieldData, TheLandingsMapGivesItsLastGoodBands) {
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

/// Written again, only names and dates of files and the reference time type differ.
TEST_F(FieldData, TheLandingIsWrittenAsItWasRead) {
  const test::Folder folder;
  AQ_DataSTH file;
  AQ_DataMask mapFile;
  std::shared_ptr<AQ_HeaderSTH> header;
  std::shared_ptr<AQ_SpectralTimeHistory> history;
  std::shared_ptr<AQ_HeaderMask> mapHeader;
  std::shared_ptr<AQ_MaskMap> map;
  ASSERT_EQ(file.readFile(path("landing.sth.csv"), header, history), AQ_DATA_OK);
  history->ReferenceType(AQ_AMAX);
  ASSERT_EQ(file.writeFile(folder.file("landing.sth.csv"), header, *history), AQ_DATA_OK);
  ASSERT_EQ(mapFile.readFile(path("landing.mask.csv"), mapHeader, map), AQ_DATA_OK);
  ASSERT_EQ(mapFile.writeFile(folder.file("landing.mask.csv"), mapHeader, *map), AQ_DATA_OK);
  for (const char* name : {"landing.sth.csv", "landing.mask.csv"}) {
    auto before = test::linesOf(test::contentOf(path(name)));
    auto after = test::linesOf(test::contentOf(folder.file(name)));
    for (auto* lines : {&before, &after}) {
      std::erase_if(*lines, [](const auto& line) { return line.find("DateTime**") != line.npos; });
    }
    EXPECT_EQ(before, after);
  }
}

}  // namespace
}  // namespace aq
