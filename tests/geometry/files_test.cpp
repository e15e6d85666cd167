#include "tests/support/files.h"

#include <aq/geometry/data_gth.h>
#include <aq/geometry/data_mic.h>
#include <aq/geometry/data_pth.h>
#include <aq/geometry/data_tspi.h>
#include <aq/geometry/emt_rcv_record.h>
#include <gtest/gtest.h>

#include <limits>
#include <utility>

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

TEST(DataPTH, CountsAndDatesAreMadeAfresh) {
  ReadPTH read(kPTH);
  ASSERT_EQ(read.result, AQ_DATA_OK);
  AQ_HeaderPTH& header = *read.header;
  const test::Folder folder;
  header.lNumberRecords = 77;
  header.nOtherRecords = 3;
  header.sTSPIFileDateTime = "not written";
  read.file.writeFile(folder.file("out"), read.header, *read.model, read.result);
  EXPECT_EQ(header.lNumberRecords, 3);
  const ReadPTH again(folder.file("out"));
  EXPECT_EQ(again.header->nOtherRecords, 1);
  EXPECT_EQ(again.model->Position(1)->Time()->RelSeconds(), 0);
  EXPECT_NE(again.header->sTSPIFileDateTime, "not written");
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
            AQ_DATA_OK);  // the line of column titles may be missing
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

TEST(DataTSPI, DropsPoorPositions) {
  AQ_DataTSPI file;
  EXPECT_EQ(file.RT20Limit(), 1);
  std::size_t headerLines = 0;
  file.observeHeader([&](const HeaderLine& line) { EXPECT_EQ(line.number, ++headerLines); });
  std::shared_ptr<AQ_PositionTimeHistory> history;
  AQ_DataMessage result = AQ_DATA_FILE_ERROR;
  for (const auto& [limit, kept] : {std::pair{1, 2}, {254, 3}, {255, 4}, {0, 1}}) {
    file.RT20Limit(static_cast<std::uint8_t>(limit));
    file.readFile(kTSPI, history, result);
    EXPECT_EQ(result, AQ_DATA_OK);
    EXPECT_EQ(history->Count(), kept);
    EXPECT_EQ(file.nBadPositions(), 4 - kept);
    EXPECT_EQ(std::exchange(headerLines, 0), 6U);
  }
  file.readFile("no such file", history, result);
  EXPECT_EQ(result, AQ_DATA_FILE_ERROR);
  EXPECT_EQ(file.nBadPositions(), 3);  // the count of the previous read
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

TEST(DataMIC, FillsTheCallersMicrophone) {
  const auto microphone = std::make_shared<AQ_Microphone>();
  AQ_DataMIC file;
  std::shared_ptr<AQ_HeaderMIC> header;
  AQ_DataMessage result = AQ_DATA_FILE_ERROR;
  file.readFile(kMIC, header, microphone, result);
  ASSERT_EQ(result, AQ_DATA_OK);
  EXPECT_EQ(microphone->Height, 1.2);
  file.readFile(kMIC, header, nullptr, result);
  EXPECT_EQ(result, AQ_DATA_FILE_ERROR);
  EXPECT_EQ(file.lastFailure()->found, "no object");
}

TEST(Geometry, FreshObjectsHoldZeros) {
  const AQ_Microphone mic;
  const AQ_Geometry point;
  const AQ_EmtRcvRecord record;
  const AQ_Position position;
  const AQ_HeaderGTH gth;
  const AQ_HeaderPTH pth;
  const AQ_HeaderMIC header;
  for (const double value :
       {mic.X, mic.Y, mic.Z, mic.Height, record.SR, record.Tprop, point.SRe, point.Tprope,
        point.debugTime, position.X(), position.Y(), position.Z()}) {
    EXPECT_EQ(value, 0);
  }
  for (const float value : {point.THETAe, point.BETAe, gth.Temperature}) EXPECT_EQ(value, 0);
  for (const std::int32_t count :
       {std::int32_t{gth.NumberRecords}, std::int32_t{gth.OtherRecords},
        std::int32_t{gth.nCommentLines}, pth.lNumberRecords, std::int32_t{pth.nOtherRecords},
        std::int32_t{pth.nCommentLines}, header.lNumberRecords, std::int32_t{header.nOtherRecords},
        std::int32_t{header.nCommentLines}}) {
    EXPECT_EQ(count, 0);
  }
}

TEST(DataGTH, TheDebugTimeIsWrittenAndNotRead) {
  ReadGTH read(kGTH);
  ASSERT_EQ(read.result, AQ_DATA_OK);
  const test::Folder folder;
  read.header->NumberRecords = 77;
  read.model->Point(1)->debugTime = 0.5;  // the eleventh column, which is not read back
  read.file.writeFile(folder.file("out"), read.header, *read.model, read.result);
  EXPECT_EQ(read.header->NumberRecords, 2);
  EXPECT_TRUE(test::linesOf(contentOf(folder.file("out")))[19].ends_with(",0.1,0.5"));
  EXPECT_EQ(ReadGTH(folder.file("out")).model->Point(1)->debugTime, 0);
}

TEST(DataGTH, TheHeadersTimeGoesThroughATwelveHourClock) {
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
  EXPECT_EQ(read.model->Point(5)->Te()->RelSeconds(), 0);
  AQ_DataGTH file;
  AQ_DataMessage result = AQ_DATA_OK;
  EXPECT_ERROR(file.writeFile(folder.file("out"), read.header, *read.model, result),
               InvalidArgument);
}

}  // namespace
}  // namespace aq
