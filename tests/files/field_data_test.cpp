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

/// Lines of a file but for the dates that each writing renews.
std::vector<std::string> lastingLines(const std::string& file) {
  auto lines = test::linesOf(test::contentOf(file));
  std::erase_if(lines, [](const auto& line) { return line.find("DateTime**") != line.npos; });
  return lines;
}

/// Reads a file, writes it, reads and writes that: the two written ones are the same. Gives the
/// model as it was read first.
template <class File, class Header, class Model>
std::shared_ptr<Model> expectStable(const std::string& path, std::vector<std::string>& written) {
  const test::Folder folder;
  const std::string copy = folder.file(std::filesystem::path(path).filename().string());
  std::shared_ptr<Model> first;
  for (int round = 0; round < 2; ++round) {
    File file;
    std::shared_ptr<Header> header;
    std::shared_ptr<Model> model;
    AQ_DataMessage result = AQ_DATA_FILE_ERROR;
    const std::string& source = round == 0 ? path : copy;
    if constexpr (requires { file.readFile(source, header, model); }) {
      EXPECT_EQ(file.readFile(source, header, model), AQ_DATA_OK);
      EXPECT_EQ(file.writeFile(copy, header, *model), AQ_DATA_OK);
    } else {
      file.readFile(source, header, model, result);
      EXPECT_EQ(result, AQ_DATA_OK);
      file.writeFile(copy, header, *model, result);
      EXPECT_EQ(result, AQ_DATA_OK);
    }
    if (round == 0) {
      first = model;
      written = lastingLines(copy);
    }
  }
  EXPECT_EQ(lastingLines(copy), written);
  return first;
}

TEST_F(FieldData, TheLandingIsWrittenAsItWasRead) {
  std::vector<std::string> written;
  expectStable<AQ_DataSTH, AQ_HeaderSTH, AQ_SpectralTimeHistory>(path("landing.sth.csv"), written);
  written[9] = "ReferenceTimeType**,AMAX";  // the one thing that is not read back
  EXPECT_EQ(written, lastingLines(path("landing.sth.csv")));
  expectStable<AQ_DataMask, AQ_HeaderMask, AQ_MaskMap>(path("landing.mask.csv"), written);
  EXPECT_EQ(written, lastingLines(path("landing.mask.csv")));
  const auto positions = expectStable<AQ_DataPTH, AQ_HeaderPTH, AQ_PositionTimeHistory>(
      path("landing.pth.csv"), written);
  EXPECT_EQ(written, lastingLines(path("landing.pth.csv")));
  EXPECT_EQ(positions->Count(), 317);
  const auto geometry = expectStable<AQ_DataGTH, AQ_HeaderGTH, AQ_GeometryTimeHistory>(
      path("landing.gth.csv"), written);
  EXPECT_EQ(geometry->Count(), 78);
}

TEST_F(FieldData, TheOtherFilesOfTheLandingRead) {
  AQ_DataTSPI tracking;
  std::shared_ptr<AQ_PositionTimeHistory> track;
  AQ_DataMessage result = AQ_DATA_FILE_ERROR;
  tracking.readFile(path("landing.tspi.csv"), track, result);
  ASSERT_EQ(result, AQ_DATA_OK);
  EXPECT_EQ(track->Count(), 309);
  EXPECT_EQ(tracking.nBadPositions(), 8);
  AQ_DataMIC microphoneFile;
  std::shared_ptr<AQ_HeaderMIC> header;
  const auto microphone = std::make_shared<AQ_Microphone>();
  microphoneFile.readFile(path("landing.mic.csv"), header, microphone, result);
  ASSERT_EQ(result, AQ_DATA_OK);
  EXPECT_EQ(microphone->Height, 1.2);
  AQ_DataINI parameters;
  ASSERT_EQ(parameters.readFile(path("landing.ini.csv")), AQ_DATA_OK);
  EXPECT_EQ(parameters.HiRec(), 78);
  AQ_DataSSR recordFile;
  std::shared_ptr<AQ_Spectrum> spectrum;
  ASSERT_EQ(recordFile.readFile(path("turbofan.ssr.csv"), spectrum), AQ_DATA_OK);
  EXPECT_EQ(spectrum->SPL(34), Variant(85.0));
}

}  // namespace
}  // namespace aq
