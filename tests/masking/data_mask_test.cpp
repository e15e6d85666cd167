#include <aq/masking/data_mask.h>
#include <gtest/gtest.h>

#include "tests/support/errors.h"
#include "tests/support/files.h"

namespace aq {
namespace {

using test::contentOf;

const std::filesystem::path kFormat = test::kData / "masking-map";
const std::string kGood = (kFormat / "good" / "two-rows.csv").string();

struct Read {
  AQ_DataMask file;
  std::shared_ptr<AQ_HeaderMask> header;
  std::shared_ptr<AQ_MaskMap> map;
  AQ_DataMessage result;

  explicit Read(const std::string& path) : result(file.readFile(path, header, map)) {}
};

TEST(DataMask, LinesAreCountedAfresh) {
  Read read(kGood);
  ASSERT_EQ(read.result, AQ_DATA_OK);
  AQ_HeaderMask& header = *read.header;
  const test::Folder folder;
  header.lNumberRows = header.nCommentLines = 7;  // wrong counts, which are not written
  EXPECT_EQ(read.file.writeFile(folder.file("out"), read.header, *read.map), AQ_DATA_OK);
  EXPECT_EQ(Read(folder.file("out")).header->nCommentLines, 1);
  EXPECT_EQ(header.nCommentLines, 7);
  EXPECT_EQ(header.lNumberRows, 2);
  const AQ_HeaderMask none;
  EXPECT_EQ(none.lNumberRows, 0);
  for (const int value : {none.iBandLow, none.iBandHigh, none.nOtherRecords, none.nCommentLines}) {
    EXPECT_EQ(value, 0);
  }
  EXPECT_EQ(header.sFileName, folder.file("out"));
}

TEST(DataMask, RowOneDecidesTheBands) {
  const test::Folder folder;
  AQ_MaskMap map;
  for (const std::int16_t record : {std::int16_t{1}, std::int16_t{2}}) {
    map.Row(record, std::make_shared<AQ_MaskRow>());
    map.Row(record)->Mask(static_cast<std::int16_t>(20 + record))->MaskString("MS");
    map.Row(record)->Mask(23);
  }
  Read read(kGood);
  ASSERT_EQ(read.file.writeFile(folder.file("out"), read.header, map), AQ_DATA_OK);
  EXPECT_EQ(read.header->iBandLow, 21);
  EXPECT_EQ(read.header->lNumberRows, 2);
  const std::string text = contentOf(folder.file("out"));
  EXPECT_NE(
      text.find("\nRec#,B21/125Hz,B22/160Hz,B23/200Hz,B23/200Hz,LGB\n1,MS,--,--,0\n2,MS,--,0\n"),
      std::string::npos);
  EXPECT_EQ(Read(folder.file("out")).result, AQ_DATA_FILE_ERROR);  // row 2 lacks a band
}

TEST(DataMask, BandsInAGapAreNotMasked) {
  const test::Folder folder;
  Read read(kGood);
  for (const std::int16_t row : {std::int16_t{1}, std::int16_t{2}}) {
    const int gap = 19 + row;  // the file's highest band is 19
    for (std::int16_t band = 20; band <= 30; ++band) {
      if (band != gap) read.map->Row(row)->store(band, AQ_Mask());
    }
  }
  ASSERT_EQ(read.file.writeFile(folder.file("out"), read.header, *read.map), AQ_DATA_OK);
  const Read again(folder.file("out"));
  ASSERT_EQ(again.result, AQ_DATA_OK);
  EXPECT_EQ(again.header->iBandHigh, 30);
  EXPECT_EQ(again.map->Row(2)->Mask(19)->MaskString(), "FR");
  EXPECT_EQ(again.map->Row(1)->Mask(20)->MaskString(), "--");
  EXPECT_EQ(again.map->Row(2)->Mask(21)->MaskString(), "--");
}

TEST(DataMask, WhatCannotBeWrittenThrows) {
  const test::Folder folder;
  AQ_DataMask file;
  const auto header = std::make_shared<AQ_HeaderMask>();
  AQ_MaskMap map;
  EXPECT_ERROR(file.writeFile(folder.file("out"), header, map), InvalidArgument);  // no row 1
  map.Row(1, std::make_shared<AQ_MaskRow>());
  EXPECT_ERROR(file.writeFile(folder.file("out"), header, map), InvalidArgument);  // no band
  map.Row(1)->Mask(1);
  EXPECT_ERROR(file.writeFile(folder.file("out"), header, map), InvalidArgument);  // no band label
  map.Row(1, std::make_shared<AQ_MaskRow>());
  map.Row(1)->Mask(50);
  map.Row(3, map.Row(1));
  EXPECT_ERROR(file.writeFile(folder.file("out"), header, map), InvalidArgument);  // no row 2
  EXPECT_ERROR(file.writeFile(folder.file("out"), nullptr, map), ObjectNotSet);
  EXPECT_FALSE(std::filesystem::exists(folder.file("out")));
}

TEST(DataMask, BlanksAroundLettersAndAnyRecordNumbers) {
  const test::Folder folder;
  auto lines = test::linesOf(contentOf(kGood));
  lines[13] = "5, -- ,\"MS\", F-,29";
  lines[14] = "7,AA,-C,FR, 28 ,more";
  const Read read(folder.with("in", test::textOf(lines)));
  ASSERT_EQ(read.result, AQ_DATA_OK);
  EXPECT_EQ(read.map->Row(5)->Mask(18)->MaskString(), "MS");
  EXPECT_EQ(read.map->Row(7)->LGB(), 28);
  EXPECT_ERROR(read.map->Copy(), InvalidArgument);
}

TEST(DataMask, ANegativeCountTakesNoLine) {
  const test::Folder folder;
  auto lines = test::linesOf(contentOf(kGood));
  lines[8] = "OtherRecords**,-4";
  lines.erase(lines.begin() + 9);
  const Read read(folder.with("in", test::textOf(lines)));
  ASSERT_EQ(read.result, AQ_DATA_OK);
  EXPECT_EQ(read.header->nOtherRecords, -4);
  EXPECT_EQ(read.header->cOtherRecords->Count(), 0);
}

}  // namespace
}  // namespace aq
