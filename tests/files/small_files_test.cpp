#include <aq/files/data_ini.h>
#include <aq/files/data_ssr.h>
#include <aq/files/file_kind.h>
#include <gtest/gtest.h>

#include "tests/support/bad_files.h"
#include "tests/support/errors.h"
#include "tests/support/files.h"

namespace aq {
namespace {

using test::contentOf;

const std::string kSSR = (test::kData / "spectrum-record/good/three-bands.csv").string();
const std::string kINI = (test::kData / "variable-initialization/good/all-parameters.csv").string();

TEST(DataSSR, ReadsAndWritesTheSameBytes) {
  AQ_DataSSR file;
  std::shared_ptr<AQ_Spectrum> spectrum;
  std::shared_ptr<AQ_HeaderSSR> header;
  ASSERT_EQ(file.readFile(kSSR, spectrum), AQ_DATA_OK);
  ASSERT_EQ(file.readFile(kSSR, spectrum, header), AQ_DATA_OK);
  EXPECT_EQ(header->sFileName, "three-bands.csv");
  EXPECT_EQ(header->aqFileDateTime->TODstring(), "14:02:37");
  EXPECT_EQ(header->cCommentLines->Item(1), "a, b");
  EXPECT_EQ(spectrum->LowBand(), 10);
  EXPECT_EQ(spectrum->HighBand(), 12);
  EXPECT_EQ(spectrum->SPL(11), Variant(0.5));
  const test::FixedInformation fixed;
  const test::Folder folder;
  ASSERT_EQ(file.writeFile(folder.file("three-bands.csv"), header, *spectrum), AQ_DATA_OK);
  EXPECT_EQ(contentOf(folder.file("three-bands.csv")), contentOf(kSSR));
  AQ_Spectrum one;
  one.SPL(50, 9999);
  ASSERT_EQ(file.writeFile(folder.file("one"), header, one), AQ_DATA_OK);
  ASSERT_EQ(file.readFile(folder.file("one"), spectrum), AQ_DATA_OK);
  EXPECT_EQ(spectrum->LowBand(), 50);
  EXPECT_EQ(spectrum->SPL(50), Variant(9999.0));
  one.SPL(51, 1.0);
  EXPECT_ERROR(file.writeFile(folder.file("two"), header, one), InvalidArgument);
  EXPECT_ERROR(file.writeFile(folder.file("two"), header, AQ_Spectrum()), InvalidArgument);
  EXPECT_FALSE(std::filesystem::exists(folder.file("two")));
}

TEST(DataSSR, TheFirstAndTheLastLabelDecide) {
  const test::Folder folder;
  auto lines = test::linesOf(contentOf(kSSR));
  lines[5] = " \"B17/50Hz\" ,anything,x19 /";
  const std::string path = folder.with("in", test::textOf(lines));
  AQ_DataSSR file;
  std::shared_ptr<AQ_Spectrum> spectrum;
  ASSERT_EQ(file.readFile(path, spectrum), AQ_DATA_OK);
  EXPECT_EQ(spectrum->LowBand(), 17);
  EXPECT_EQ(spectrum->HighBand(), 19);
}

TEST(DataSSR, BadFilesFailWithTheirPlace) {
  test::expectFailures("spectrum-record",
                       {{"title-in-lower-case", 1, 2, "\"spectrum record\""},
                        {"no-label-line", 6, 0, "the end of the file"},
                        {"labels-are-no-labels", 6, 1, "\"Low\""},
                        {"last-label-without-number", 6, 3, "\"Bx/16Hz\""},
                        {"no-data-line", 7, 0, "the end of the file"},
                        {"level-missing", 7, 3, "the end of the line"},
                        {"level-is-text", 7, 2, "\"loud\""}},
                       [](const std::string& path) {
                         AQ_DataSSR file;
                         std::shared_ptr<AQ_Spectrum> spectrum;
                         std::shared_ptr<AQ_HeaderSSR> header;
                         EXPECT_EQ(file.readFile(path, spectrum, header), AQ_DATA_FILE_ERROR);
                         EXPECT_EQ(spectrum, nullptr);
                         EXPECT_EQ(header != nullptr, file.lastFailure()->line > 5);
                         return file.lastFailure();
                       });
}

TEST(DataINI, ReadsAndWritesTheSameBytes) {
  AQ_DataINI parameters;
  ASSERT_EQ(parameters.readFile(kINI), AQ_DATA_OK);
  EXPECT_EQ(parameters.CalAdj(), -0.25F);
  EXPECT_EQ(parameters.NuAvg(), AQ_TRUSLO);
  EXPECT_EQ(parameters.NuTimg(), AQ_ICAOSLO);
  EXPECT_EQ(parameters.PrWndo(), 10.5F);
  EXPECT_EQ(parameters.PoWndo(), 15.0F);
  EXPECT_EQ(parameters.LoRec(), 1);
  EXPECT_EQ(parameters.HiRec(), 78);
  EXPECT_EQ(parameters.FileName(), "all-parameters.csv");
  EXPECT_EQ(parameters.FileDate()->TODstring(), "14:02:37");
  EXPECT_EQ(parameters.Comments()->Item(1), "Flight test 7");
  const test::FixedInformation fixed;
  const test::Folder folder;
  ASSERT_EQ(parameters.writeFile(folder.file("all-parameters.csv")), AQ_DATA_OK);
  EXPECT_EQ(contentOf(folder.file("all-parameters.csv")), contentOf(kINI));
  EXPECT_EQ(parameters.FileName(), folder.file("all-parameters.csv"));
  AQ_DataINI fresh;
  fresh.Comments()->Add("");
  ASSERT_EQ(fresh.writeFile(folder.file("fresh")), AQ_DATA_OK);
  EXPECT_EQ(test::linesOf(contentOf(folder.file("fresh"))).size(), 5U);
  fresh.NuAvg(static_cast<AQ_AverageMethod>(5));
  ASSERT_EQ(fresh.writeFile(folder.file("fresh")), AQ_DATA_OK);
  EXPECT_TRUE(contentOf(folder.file("fresh")).ends_with("\nNuAvg**, \n"));
}

TEST(DataINI, KeywordsComeInAnyCaseAndOrder) {
  const test::Folder folder;
  AQ_DataINI parameters;
  ASSERT_EQ(parameters.readFile(kINI), AQ_DATA_OK);
  const std::string path = folder.with("in",
                                       "hirec** x,9\n"
                                       "FILETYPE**\n"
                                       "**,5\n"
                                       "CALADJ, 2\n"
                                       "\n"
                                       "calAdj**, \"2.5\" ,more\n"
                                       "NUTIMG**,end\n"
                                       "CalAdj **, 7\n"
                                       "NumberOfCommentLines**,3\n"
                                       "a, b\n"
                                       "\n"
                                       "LoRec**, 50\n"
                                       "unknown**");
  ASSERT_EQ(parameters.readFile(path), AQ_DATA_OK);
  EXPECT_EQ(parameters.HiRec(), 9);
  EXPECT_EQ(parameters.CalAdj(), 2.5F);
  EXPECT_EQ(parameters.LoRec(), 1);          // that line was a comment
  EXPECT_EQ(parameters.NuAvg(), AQ_NA);      // not in the file
  EXPECT_EQ(parameters.NuTimg(), AQ_START);  // a text that no table knows
  EXPECT_EQ(parameters.FileName(), "all-parameters.csv");
  ASSERT_EQ(parameters.Comments()->Count(), 3);  // added to the one there was
  EXPECT_EQ(parameters.Comments()->Item(2), "a");
  EXPECT_EQ(parameters.Comments()->Item(3), "LoRec**");
  EXPECT_EQ(parameters.readFile(folder.file("none")), AQ_DATA_FILE_ERROR);
  EXPECT_EQ(parameters.NuTimg(), AQ_START);  // nothing changes
}

TEST(DataINI, BadFilesFailWithTheirPlaceAndKeepWhatStandsBefore) {
  test::expectFailures("variable-initialization",
                       {{"date-without-time", 3, 3, "the end of the line"},
                        {"count-is-text", 4, 2, "\"one\""},
                        {"more-comments-than-lines", 13, 0, "the end of the file"},
                        {"calibration-is-text", 6, 2, "\" low\""},
                        {"keyword-without-value", 9, 2, "the end of the line"},
                        {"record-beyond-16-bits", 12, 2, "\" 32768\""}},
                       [](const std::string& path) {
                         AQ_DataINI parameters;
                         EXPECT_EQ(parameters.readFile(path), AQ_DATA_FILE_ERROR);
                         EXPECT_EQ(parameters.FileName(), "all-parameters.csv");
                         EXPECT_EQ(parameters.LoRec(),
                                   parameters.lastFailure()->line == 12 ? 1 : 0);
                         return parameters.lastFailure();
                       });
}

TEST(FileKind, ByTitleOrByShape) {
  const std::pair<const char*, FileKind> kinds[] = {
      {"spectral-time-history", FileKind::SpectralTimeHistory},
      {"position-time-history", FileKind::PositionTimeHistory},
      {"microphone-position", FileKind::MicrophonePosition},
      {"geometric-time-history", FileKind::GeometricTimeHistory},
      {"masking-map", FileKind::MaskingMap},
      {"variable-initialization", FileKind::VariableInitialization},
      {"spectrum-record", FileKind::SpectrumRecord},
      {"tracking", FileKind::Tracking}};
  for (const auto& [format, kind] : kinds) {
    for (const auto& file : std::filesystem::directory_iterator(test::kData / format / "good")) {
      EXPECT_EQ(kindOfFile(file.path().string()), kind) << format;
    }
  }
  const test::Folder folder;
  const std::string header = "\n\n\n\n\n\n";
  const std::pair<std::string, FileKind> texts[] = {
      {"", FileKind::Unknown},
      {"FileType**,masking map\n", FileKind::Unknown},
      {"FileType,Masking Map\n", FileKind::Unknown},
      {"x**, \"Masking Map\"", FileKind::MaskingMap},
      {header, FileKind::Unknown},
      {header + "10:00:00,0,,,,,,,1,2,3", FileKind::Tracking},
      {header + "10:00:00,0,,,,,,,1,2", FileKind::Unknown},
      {header + "10:00:00,256,,,,,,,1,2,3", FileKind::Unknown},
      {std::string(100000, '\0'), FileKind::Unknown},
      {std::string(70000, '*') + header + "10:00:00,0,,,,,,,1,2,3", FileKind::Unknown}};
  for (const auto& [text, kind] : texts) EXPECT_EQ(kindOfFile(folder.with("in", text)), kind);
  EXPECT_EQ(kindOfFile(folder.file("none")), FileKind::Unknown);
  EXPECT_EQ(kindOfFile(folder.file("")), FileKind::Unknown);
}

}  // namespace
}  // namespace aq
