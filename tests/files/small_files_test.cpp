#include <aq/aq.h>
#include <aq/core/band_label.h>
#include <gtest/gtest.h>

#include <map>

#include "tests/support/errors.h"
#include "tests/support/files.h"
#include "tests/support/samples.h"

namespace aq {
namespace {

using test::contentOf;

const std::string kSSR = (test::kData / "spectrum-record/good/three-bands.csv").string();
const std::string kINI = (test::kData / "variable-initialization/good/all-parameters.csv").string();

/// Expects an object that is created on first access and then kept, unless the caller sets another.
template <class Owner, class Object>
void expectShared(std::shared_ptr<Object> (Owner::*get)(),
                  void (Owner::*set)(std::shared_ptr<Object>)) {
  Owner owner;
  const auto first = (owner.*get)();
  EXPECT_TRUE(first != nullptr && (owner.*get)() == first);
  const auto given = std::make_shared<Object>();
  (owner.*set)(given);
  EXPECT_EQ((owner.*get)(), given);
}

TEST(Objects, AreMadeOnceOrShared) {
  using Lines = Collection<std::string>;
  using History = AQ_SpectralTimeHistory;
  using Points = AQ_GeometryTimeHistory;
  expectShared<AQ_Position, AQ_Time>(&AQ_Position::Time, &AQ_Position::Time);
  expectShared<AQ_Geometry, AQ_Position>(&AQ_Geometry::Pe, &AQ_Geometry::Pe);
  expectShared<AQ_Geometry, AQ_Time>(&AQ_Geometry::Te, &AQ_Geometry::Te);
  expectShared<AQ_Geometry, AQ_Time>(&AQ_Geometry::Tm, &AQ_Geometry::Tm);
  expectShared<AQ_EmtRcvRecord, AQ_Time>(&AQ_EmtRcvRecord::T, &AQ_EmtRcvRecord::T);
  expectShared<AQ_EmtRcvRecord, AQ_Time>(&AQ_EmtRcvRecord::Tr, &AQ_EmtRcvRecord::Tr);
  expectShared<AQ_EmtRcvRecord, AQ_Position>(&AQ_EmtRcvRecord::ACPosition,
                                             &AQ_EmtRcvRecord::ACPosition);
  expectShared<Points, AQ_Time>(&Points::startTime, &Points::startTime);
  expectShared<Points, AQ_Time>(&Points::ReferenceTime, &Points::ReferenceTime);
  expectShared<History, AQ_Time>(&History::startTime, &History::startTime);
  expectShared<History, AQ_Time>(&History::ReferenceTime, &History::ReferenceTime);
  expectShared<History, AQ_MetricSummary>(&History::Metrics, &History::Metrics);
  expectShared<AQ_Spectrum, AQ_Metric>(&AQ_Spectrum::Metric, &AQ_Spectrum::Metric);
  expectShared<AQ_DataINI, Lines>(&AQ_DataINI::Comments, &AQ_DataINI::Comments);
}

TEST(DataSSR, WritesOneBandOrMoreWithoutAGap) {
  AQ_DataSSR file;
  std::shared_ptr<AQ_Spectrum> spectrum;
  std::shared_ptr<AQ_HeaderSSR> header;
  ASSERT_EQ(file.readFile(kSSR, spectrum, header), AQ_DATA_OK);
  const test::Folder folder;
  AQ_Spectrum one;
  one.SPL(50, 9999);
  ASSERT_EQ(file.writeFile(folder.file("one"), header, one), AQ_DATA_OK);
  EXPECT_EQ(header->sFileName, folder.file("one"));
  ASSERT_EQ(file.readFile(folder.file("one"), spectrum), AQ_DATA_OK);
  EXPECT_EQ(spectrum->SPL(50), Variant(9999.0));
  EXPECT_EQ(bandLabel(2), "B2/1.6Hz");
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

TEST(DataINI, WritesOnlyWhatIsSet) {
  const test::Folder folder;
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
  EXPECT_EQ(parameters.LoRec(), 1);          // the line with LoRec is a comment
  EXPECT_EQ(parameters.NuAvg(), AQ_NA);      // not in the file
  EXPECT_EQ(parameters.NuTimg(), AQ_START);  // `end` in lower case is an unknown word
  EXPECT_EQ(parameters.FileName(), "all-parameters.csv");
  ASSERT_EQ(parameters.Comments()->Count(), 3);  // two follow the existing comment
  EXPECT_EQ(parameters.Comments()->Item(2), "a");
  EXPECT_EQ(parameters.Comments()->Item(3), "LoRec**");
  EXPECT_EQ(parameters.readFile(folder.file("none")), AQ_DATA_FILE_ERROR);
  EXPECT_EQ(parameters.NuTimg(), AQ_START);  // a missing file changes nothing
}

TEST(FileKind, ByTitleOrByShape) {
  const std::map<std::string, FileKind> kinds = {
      {"spectral-time-history", FileKind::SpectralTimeHistory},
      {"position-time-history", FileKind::PositionTimeHistory},
      {"microphone-position", FileKind::MicrophonePosition},
      {"geometric-time-history", FileKind::GeometricTimeHistory},
      {"masking-map", FileKind::MaskingMap},
      {"variable-initialization", FileKind::VariableInitialization},
      {"spectrum-record", FileKind::SpectrumRecord},
      {"tracking", FileKind::Tracking},
      {"fixed-column-history", FileKind::FixedColumnHistory},
      {"analyzer-recording", FileKind::AnalyzerRecording}};
  test::forSamples("good", [&](const std::string& format, const std::filesystem::path& sample) {
    EXPECT_EQ(kindOfFile(sample.string()), kinds.at(format));
  });
  const test::Folder folder;
  const std::string header = "\n\n\n\n\n\n";
  const std::pair<std::string, FileKind> texts[] = {
      {"", FileKind::Unknown},
      {"FileType**,masking map\n", FileKind::Unknown},
      {"FileType,Masking Map\n", FileKind::Unknown},
      {"x**, \"Masking Map\"", FileKind::MaskingMap},
      {header, FileKind::Unknown},
      {header + "10:00:00,0,,,,,,,1,2,3", FileKind::Tracking},
      {"\n\n\n\n\n10:00:00,0,,,,,,,1,2,3\n",
       FileKind::Unknown},  // line 6 is still part of the header
      {header + std::string(9, '\n') + "10:00:00,0,,,,,,,1,2,3", FileKind::Tracking},
      {header + std::string(10, '\n') + "10:00:00,0,,,,,,,1,2,3", FileKind::Unknown},
      {header + "10:00:00,0,,,,,,,1,2", FileKind::Unknown},
      {header + "10:00:00,256,,,,,,,1,2,3", FileKind::Unknown},
      {header + "10:00:00,300,,,,,,,1,2,3\n10:00:00,0,,,,,,,1,2,3", FileKind::Tracking},
      {std::string(100000, '\0'), FileKind::Unknown},
      {std::string(65530, '*') + header + "10:00:00,0,,,,,,,1,2,3", FileKind::Unknown}};
  for (const auto& [text, kind] : texts) EXPECT_EQ(kindOfFile(folder.with("in", text)), kind);
  EXPECT_EQ(kindOfFile(folder.file("none")), FileKind::Unknown);
  EXPECT_EQ(kindOfFile(folder.file("")), FileKind::Unknown);
}

}  // namespace
}  // namespace aq
