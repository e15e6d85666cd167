#include "tests/support/files.h"

#include <aq/geometry/data_gth.h>
#include <aq/geometry/data_mic.h>
#include <aq/geometry/data_pth.h>
#include <aq/geometry/data_tspi.h>
#include <gtest/gtest.h>

#include <limits>

#include "tests/support/bad_files.h"
#include "tests/support/errors.h"

namespace aq {
namespace {

using test::contentOf;

std::string good(const char* file) { return (test::kData / file).string(); }

template <class File, class Header, class Model>
struct Read {
  File file;
  std::shared_ptr<Header> header;
  std::shared_ptr<Model> model;
  AQ_DataMessage result = AQ_DATA_OK;

  explicit Read(const std::string& path) { file.readFile(path, header, model, result); }
};
using ReadPTH = Read<AQ_DataPTH, AQ_HeaderPTH, AQ_PositionTimeHistory>;
using ReadGTH = Read<AQ_DataGTH, AQ_HeaderGTH, AQ_GeometryTimeHistory>;

const std::string kPTH = good("position-time-history/good/three-positions.csv");
const std::string kGTH = good("geometric-time-history/good/two-points.csv");
const std::string kMIC = good("microphone-position/good/one-microphone.csv");
const std::string kTSPI = good("tracking/good/four-positions.csv");

TEST(DataPTH, ReadsAndWritesTheSameBytes) {
  ReadPTH read(kPTH);
  ASSERT_EQ(read.result, AQ_DATA_OK);
  EXPECT_EQ(read.header->sFileType, "Position Time-History");
  EXPECT_EQ(read.header->sProjectName, "Flight test 7");
  EXPECT_EQ(read.header->sTSPIFileName, "track.csv");
  EXPECT_EQ(read.header->sTSPIFileDateTime, "03/14/2004,07:05:09");
  EXPECT_EQ(read.header->aqFileDateTime->TODstring(), "14:02:37");
  EXPECT_EQ(read.header->nOtherRecords, 1);
  EXPECT_EQ(read.header->cCommentLines->Item(1), "a, b");
  EXPECT_EQ(read.model->Count(), 3);
  EXPECT_EQ(read.model->Position(2)->Y(), 123456789.012345);
  EXPECT_EQ(read.model->Position(3)->Time()->TODstring(), "10:00:00.4");
  const test::FixedInformation fixed;
  const test::Folder folder;
  const std::string path = folder.file("three-positions.csv");
  read.header->lNumberRecords = 77;
  read.header->nOtherRecords = 3;
  read.header->sTSPIFileDateTime = "not written";
  read.file.writeFile(path, read.header, *read.model, read.result);
  ASSERT_EQ(read.result, AQ_DATA_OK);
  EXPECT_EQ(contentOf(path), contentOf(kPTH));
  EXPECT_EQ(read.header->lNumberRecords, 3);
  EXPECT_EQ(read.header->sFileName, path);
}

TEST(DataPTH, DataLinesAreCountedWithSixteenBits) {
  const test::Folder folder;
  auto lines = test::linesOf(contentOf(kPTH));
  lines[7] = "NumberRecords**,1";
  lines.resize(13);
  const ReadPTH none(folder.with("in", test::textOf(lines)));
  EXPECT_EQ(none.model->Count(), 0);
  lines.resize(12);
  EXPECT_EQ(ReadPTH(folder.with("in", test::textOf(lines))).result,
            AQ_DATA_OK);  // nobody reads titles
  lines.resize(13 + 32767, "10:00:00,1,2,3");
  const ReadPTH most(folder.with("in", test::textOf(lines)));
  ASSERT_EQ(most.result, AQ_DATA_OK);
  EXPECT_EQ(most.model->Count(), 32767);
  lines.push_back(lines.back());
  const ReadPTH tooMany(folder.with("in", test::textOf(lines)));
  EXPECT_EQ(tooMany.result, AQ_DATA_FILE_ERROR);
  EXPECT_EQ(tooMany.file.lastFailure()->line, 13U + 32768U);
  most.model->Position(32768, most.model->Position(1));
  AQ_DataPTH file;
  AQ_DataMessage result = AQ_DATA_OK;
  EXPECT_ERROR(file.writeFile(folder.file("out"), most.header, *most.model, result), Overflow);
  EXPECT_FALSE(std::filesystem::exists(folder.file("out")));
}

TEST(DataPTH, BadFilesFailWithTheirPlace) {
  test::expectFailures("position-time-history",
                       {{"title-in-lower-case", 1, 2, "\"position time-history\""},
                        {"count-is-text", 8, 2, "\"three\""},
                        {"cut-in-header", 11, 0, "the end of the file"},
                        {"time-without-colons", 14, 1, "\"100000.1\""},
                        {"coordinate-with-comma", 15, 4, "\"x\""},
                        {"three-fields", 16, 4, "the end of the line"},
                        {"blank-line", 15, 1, "a blank line"}},
                       [](const std::string& path) {
                         const ReadPTH read(path);
                         EXPECT_EQ(read.model, nullptr);
                         EXPECT_EQ(read.header != nullptr, read.file.lastFailure()->line > 12);
                         return read.file.lastFailure();
                       });
}

TEST(DataTSPI, DropsPoorPositions) {
  const std::pair<int, std::vector<double>> rows[] = {{0, {-1474.7}},
                                                      {1, {-1474.7, -1465.3}},
                                                      {254, {-1484.1, -1474.7, -1465.3}},
                                                      {255, {-1484.1, -1474.7, -1465.3, -1456}}};
  AQ_DataTSPI file;
  EXPECT_EQ(file.RT20Limit(), 1);
  for (const auto& [limit, kept] : rows) {
    file.RT20Limit(static_cast<std::uint8_t>(limit));
    std::shared_ptr<AQ_PositionTimeHistory> history;
    AQ_DataMessage result = AQ_DATA_FILE_ERROR;
    file.readFile(kTSPI, history, result);
    ASSERT_EQ(result, AQ_DATA_OK);
    EXPECT_EQ(file.nBadPositions(), 4 - static_cast<int>(kept.size()));
    ASSERT_EQ(history->Count(), static_cast<int>(kept.size()));
    for (std::size_t i = 0; i < kept.size(); ++i) {
      EXPECT_EQ(history->Position(static_cast<std::int32_t>(i + 1))->X(), kept[i]);
    }
  }
  std::shared_ptr<AQ_PositionTimeHistory> none;
  AQ_DataMessage result = AQ_DATA_OK;
  file.RT20Limit(0);
  file.readFile(kTSPI, none, result);
  file.readFile("no such file", none, result);
  EXPECT_EQ(result, AQ_DATA_FILE_ERROR);
  EXPECT_EQ(file.nBadPositions(), 3);  // of the read before
}

TEST(DataTSPI, LinesAreCountedWithSixteenBits) {
  const test::Folder folder;
  std::vector<std::string> lines(6);
  AQ_DataTSPI file;
  std::shared_ptr<AQ_PositionTimeHistory> history;
  AQ_DataMessage result = AQ_DATA_FILE_ERROR;
  file.readFile(folder.with("in", test::textOf(lines)), history, result);
  EXPECT_EQ(result, AQ_DATA_OK);
  EXPECT_EQ(history->Count(), 0);
  lines.resize(32767, "10:00:00,0,,,,,,,1,2,3");
  file.readFile(folder.with("in", test::textOf(lines)), history, result);
  EXPECT_EQ(history->Count(), 32761);
  lines.push_back(lines.back());
  file.readFile(folder.with("in", test::textOf(lines)), history, result);
  EXPECT_EQ(result, AQ_DATA_FILE_ERROR);
  EXPECT_EQ(file.lastFailure()->line, 32768U);
}

TEST(DataTSPI, BadFilesFailWithTheirPlace) {
  test::expectFailures("tracking",
                       {{"line-cut-short", 8, 11, "the end of the line"},
                        {"quality-300", 9, 2, "\"300\""},
                        {"quality-blank", 9, 2, "\" \""},
                        {"quality-with-fraction", 9, 2, "\"0.5\""},
                        {"rejected-line-without-height", 7, 11, "\"\""},
                        {"quoted-coordinate", 10, 9, "\"\"-1456\"\""},
                        {"time-without-colons", 7, 1, "\"10.00\""}},
                       [](const std::string& path) {
                         AQ_DataTSPI file;
                         std::shared_ptr<AQ_PositionTimeHistory> history;
                         AQ_DataMessage result = AQ_DATA_OK;
                         file.readFile(path, history, result);
                         EXPECT_EQ(history, nullptr);
                         EXPECT_EQ(file.nBadPositions(), file.lastFailure()->line > 7 ? 1 : 0);
                         return file.lastFailure();
                       });
}

TEST(DataMIC, FillsTheCallersMicrophone) {
  const auto microphone = std::make_shared<AQ_Microphone>();
  AQ_DataMIC file;
  std::shared_ptr<AQ_HeaderMIC> header;
  AQ_DataMessage result = AQ_DATA_FILE_ERROR;
  file.readFile(kMIC, header, microphone, result);
  ASSERT_EQ(result, AQ_DATA_OK);
  EXPECT_EQ(microphone->X, 10.5);
  EXPECT_EQ(microphone->Y, -20);
  EXPECT_EQ(microphone->Z, 0.25);
  EXPECT_EQ(microphone->Height, 1.2);
  EXPECT_EQ(header->sMicrophoneID, "M1");
  EXPECT_EQ(header->sProjectName, "Flight test 7");
  EXPECT_EQ(header->cOtherRecords->Item(1), "Surveyed");
  file.readFile(kMIC, header, nullptr, result);
  EXPECT_EQ(result, AQ_DATA_FILE_ERROR);
  EXPECT_EQ(file.lastFailure()->found, "no object");
}

TEST(DataMIC, BadFilesFailWithTheirPlace) {
  test::expectFailures("microphone-position",
                       {{"title-in-lower-case", 1, 2, "\"microphone position file\""},
                        {"no-comment-count", 8, 0, "the end of the file"},
                        {"no-microphone-line", 10, 0, "the end of the file"},
                        {"three-fields", 10, 4, "the end of the line"},
                        {"height-of-ground-is-text", 10, 3, "\"ground\""}},
                       [](const std::string& path) {
                         const auto microphone = std::make_shared<AQ_Microphone>();
                         microphone->Height = 7;
                         AQ_DataMIC file;
                         std::shared_ptr<AQ_HeaderMIC> header;
                         AQ_DataMessage result = AQ_DATA_OK;
                         file.readFile(path, header, microphone, result);
                         const FileFailure& failure = *file.lastFailure();
                         EXPECT_EQ(header != nullptr, failure.line > 8);
                         EXPECT_EQ(microphone->Y, failure.field > 2 ? -20 : 0);  // in front of it
                         EXPECT_EQ(microphone->Height, 7);
                         return file.lastFailure();
                       });
}

TEST(DataGTH, ReadsAndWritesTheSameLines) {
  ReadGTH read(kGTH);
  ASSERT_EQ(read.result, AQ_DATA_OK);
  EXPECT_EQ(read.header->FileType, "Geometric Time-History");
  EXPECT_EQ(read.header->MicrophonePosition->Y(), -20);
  EXPECT_EQ(read.header->Temperature, 18.5F);
  EXPECT_EQ(read.header->MICFileDateTime, "03/14/2004,07:05:09");
  EXPECT_EQ(read.header->GTHFileDateTime->TODseconds(), 14 * 3600 + 2 * 60 + 37);
  EXPECT_EQ(read.model->Count(), 2);
  const AQ_Geometry& point = *read.model->Point(2);
  EXPECT_EQ(point.Tprope, 4.373748);
  EXPECT_EQ(point.THETAe, 17.83571F);
  EXPECT_EQ(point.BETAe, -0.1F);
  EXPECT_EQ(point.SRe, 1496.9303);
  EXPECT_EQ(read.model->Point(2)->Pe()->Z(), 512.3425);
  EXPECT_EQ(read.model->Point(2)->Te()->TODstring(), "10:00:01.12");
  const test::FixedInformation fixed;
  const test::Folder folder;
  const std::string path = folder.file("two-points.csv");
  read.model->Point(1)->debugTime = 0.5;  // the eleventh column, which is not read back
  read.file.writeFile(path, read.header, *read.model, read.result);
  ASSERT_EQ(read.result, AQ_DATA_OK);
  auto lines = test::linesOf(contentOf(kGTH));
  lines[19] += ".5";
  EXPECT_EQ(test::linesOf(contentOf(path)), lines);
  EXPECT_EQ(ReadGTH(path).model->Point(1)->debugTime, 0);
}

TEST(DataGTH, TheTimeOfTheHeaderPassesATwelveHourClock) {
  const std::pair<const char*, double> rows[] = {
      {"00:30:00", 1800}, {"11:59:59", 43199}, {"12:30:00", 88200}, {"13:00:00", 46800}};
  const test::Folder folder;
  auto lines = test::linesOf(contentOf(kGTH));
  for (const auto& [time, seconds] : rows) {
    lines[2] = std::string("FileDateTime**,03/15/2004,") + time;
    const ReadGTH read(folder.with("in", test::textOf(lines)));
    EXPECT_EQ(read.header->GTHFileDateTime->TODseconds(), seconds) << time;
  }
}

TEST(DataGTH, PointsAreKeyedByTheirNumberInTheFile) {
  const test::Folder folder;
  auto lines = test::linesOf(contentOf(kGTH));
  lines[20].replace(0, 1, "5");
  lines.push_back(lines[19]);
  lines.back().replace(0, 10, "5,11:00:00");
  const ReadGTH read(folder.with("in", test::textOf(lines)));
  ASSERT_EQ(read.result, AQ_DATA_OK);
  EXPECT_EQ(read.model->Count(), 2);
  EXPECT_EQ(read.model->Point(5)->Tm()->TODstring(), "11:00:00");
  AQ_DataGTH file;
  AQ_DataMessage result = AQ_DATA_OK;
  EXPECT_ERROR(file.writeFile(folder.file("out"), read.header, *read.model, result),
               InvalidArgument);
}

TEST(DataGTH, BadFilesFailWithTheirPlace) {
  test::expectFailures("geometric-time-history",
                       {{"title-of-positions", 1, 2, "\"Position Time-History\""},
                        {"date-is-no-date", 3, 2, "\"15.03.2004\""},
                        {"microphone-without-height", 7, 4, "the end of the line"},
                        {"temperature-is-text", 8, 2, "\"18.5 C\""},
                        {"nine-fields", 20, 10, "the end of the line"},
                        {"record-number-40000", 21, 1, "\"40000\""},
                        {"emission-time-empty", 21, 3, "\"\""}},
                       [](const std::string& path) {
                         const ReadGTH read(path);
                         EXPECT_EQ(read.model, nullptr);
                         EXPECT_EQ(read.header != nullptr, read.file.lastFailure()->line > 18);
                         return read.file.lastFailure();
                       });
}

}  // namespace
}  // namespace aq
