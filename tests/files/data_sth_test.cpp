#include <aq/files/data_sth.h>
#include <aq/files/history_words.h>
#include <gtest/gtest.h>

#include <clocale>
#include <limits>
#include <locale>

#include "tests/support/errors.h"
#include "tests/support/files.h"

namespace aq {
namespace {

using test::contentOf;

const std::filesystem::path kFormat = test::kData / "spectral-time-history";
const std::string kGood = (kFormat / "good" / "three-records.csv").string();

struct Read {
  AQ_DataSTH file;
  std::shared_ptr<AQ_HeaderSTH> header;
  std::shared_ptr<AQ_SpectralTimeHistory> history;
  AQ_DataMessage result;

  explicit Read(const std::string& path) : result(file.readFile(path, header, history)) {}
};

TEST(DataSTH, WritesTheSameBytesUnderAnyLocale) {
  struct Commas : std::numpunct<char> {
    char do_decimal_point() const override { return ','; }
    char do_thousands_sep() const override { return '.'; }
    std::string do_grouping() const override { return "\3"; }
  };
  const std::locale before = std::locale::global(std::locale(std::locale(), new Commas));
  std::setlocale(LC_ALL, "de_DE.UTF-8");
  const test::FixedInformation fixed;
  const test::Folder folder;
  Read read(kGood);
  const AQ_DataMessage result =
      read.file.writeFile(folder.file("three-records.csv"), read.header, *read.history);
  std::setlocale(LC_ALL, "C");
  std::locale::global(before);
  ASSERT_EQ(result, AQ_DATA_OK);
  EXPECT_EQ(contentOf(folder.file("three-records.csv")), contentOf(kGood));
}

TEST(DataSTH, WhatAFileDoesNotHold) {
  const test::Folder folder;
  Read read(kGood);
  read.history->ReferenceType(AQ_AMAX);
  read.history->spectrum(5)->Time()->RelSeconds(0.1);
  read.header->cCommentLines->Add("cut ** here");
  read.header->cCommentLines->Add(" \"quoted\" ");
  ASSERT_EQ(read.file.writeFile(folder.file("out"), read.header, *read.history), AQ_DATA_OK);
  EXPECT_EQ(read.header->sFileName, folder.file("out"));
  const Read again(folder.file("out"));
  EXPECT_NE(contentOf(folder.file("out")).find("ReferenceTimeType**,AMAX\n"), std::string::npos);
  EXPECT_EQ(again.header->sFileName, "out");
  EXPECT_EQ(again.history->ReferenceType(), AQ_START_REF);
  EXPECT_EQ(again.history->spectrum(5)->Time()->RelSeconds(), static_cast<double>(0.1F));
  EXPECT_EQ(again.header->cCommentLines->Item(2), "cut");
  EXPECT_EQ(again.header->cCommentLines->Item(3), "quoted");
}

TEST(DataSTH, AFileClassWithItsOwnInformationKeepsTheDateOfTheSource) {
  const test::FixedInformation fixed;  // its dates are in 2004
  const test::Folder folder;
  Read read(kGood);
  const auto dateWith = [&](std::shared_ptr<FileInformation> information, const char* source) {
    read.file.fileInformation(std::move(information));
    read.header->sGenerationFile = source;
    static_cast<void>(read.file.writeFile(folder.file("out"), read.header, *read.history));
    return test::linesOf(contentOf(folder.file("out")))[16];
  };
  *read.header->aqGenerationDateTime = AQ_Time();
  const auto keeping = keepingFileInformation();
  EXPECT_EQ(dateWith(keeping, ""), "GenerationFileDateTime**,12/30/1899,00:00:00");
  EXPECT_EQ(dateWith(keeping, kGood.c_str()), "GenerationFileDateTime**,03/14/2004,07:05:09");
  read.header->aqGenerationDateTime->CurrentDate(45000);
  read.header->aqGenerationDateTime->TODseconds(86399.5);
  EXPECT_EQ(dateWith(keeping, kGood.c_str()), "GenerationFileDateTime**,03/15/2023,23:59:59");
  EXPECT_EQ(dateWith(nullptr, kGood.c_str()), "GenerationFileDateTime**,03/14/2004,07:05:09");
  for (int writes = 0; writes < 2; ++writes) {
    setFileInformation(keepingFileInformation());
    EXPECT_EQ(dateWith(nullptr, kGood.c_str()), "GenerationFileDateTime**,03/15/2023,23:59:59");
  }
}

TEST(DataSTH, AnObserverSeesTheWordsOfTheHeader) {
  const test::Folder folder;
  const auto othersOf = [&](std::size_t line, const std::string& text, AQ_RefTimeType type) {
    auto lines = test::linesOf(contentOf(kGood));
    lines[line - 1] = text;
    HistoryWords words;
    AQ_DataSTH file;
    file.observeHeader([&](const HeaderLine& seen) { words.see(seen); });
    std::shared_ptr<AQ_HeaderSTH> header;
    std::shared_ptr<AQ_SpectralTimeHistory> history;
    static_cast<void>(file.readFile(folder.with("in", test::textOf(lines)), header, history));
    EXPECT_EQ(history->ReferenceType(), AQ_START_REF);
    std::string others;
    for (const auto& other : words.takeInto(*history)) {
      others += std::to_string(other.line) + ' ' + other.word + '>' + other.readAs;
    }
    EXPECT_EQ(history->ReferenceType(), type);
    return others;
  };
  EXPECT_EQ(othersOf(11, "ReferenceTimeType**,START", AQ_START_REF), "");
  EXPECT_EQ(othersOf(11, "ReferenceTimeType**,oaMax", AQ_OAMAX), "");
  EXPECT_EQ(othersOf(11, "ReferenceTimeType**,PEAK", AQ_START_REF), "11 PEAK>START");
  EXPECT_EQ(othersOf(6, "AveragingMethod**,FOO", AQ_START_REF), "6 FOO>LINEAR");
  EXPECT_EQ(othersOf(7, "TimeStampType**,MIDDLE", AQ_START_REF), "7 MIDDLE>START");
}

TEST(DataSTH, LinesAreReadByPositionAndRecordsByNumber) {
  const test::Folder folder;
  auto lines = test::linesOf(contentOf(kGood));
  std::swap(lines[3], lines[4]);
  std::swap(lines[23], lines[25]);
  lines[0] = "FileType**, \"Spectral Time-History\"** or so";
  lines[5] = "AveragingMethod**, 4s95 ";
  lines[6] = "TimeStampType**,nonsense";
  lines[11] = "NumberOfSpectrum**,99";
  lines[13] = "Bands**, 17 ,19, unused";
  lines.push_back("6,1:2:3, 1e1 ,\" 50.5 \",51,52,53,text");
  lines.push_back("7,1:2:4,11,9999.00,51.00,5.2e1");  // two levels before a number in another form
  const Read read(folder.with("in", test::textOf(lines)));
  ASSERT_EQ(read.result, AQ_DATA_OK) << read.file.lastFailure()->message();
  EXPECT_EQ(read.header->sProjectName, "M1");
  EXPECT_EQ(read.header->sMicrophoneID, "Flight test 7");
  EXPECT_EQ(read.history->AverageMethod(), AQ_4S95);
  EXPECT_EQ(read.history->TimeStampType(), AQ_START);
  EXPECT_EQ(read.history->Count(), 3);
  EXPECT_EQ(read.history->spectrum(5)->SPL(17), Variant(65.3));
  EXPECT_EQ(read.history->spectrum(6)->SPL(17), Variant(50.5));
  EXPECT_EQ(read.history->spectrum(6)->Time()->RelSeconds(), 10);
  EXPECT_EQ(read.history->spectrum(7)->SPL(17), Variant(9999.0));
  EXPECT_EQ(read.history->spectrum(7)->SPL(19), Variant(52.0));
}

TEST(FileFailure, SaysWhereAndWhatInOneLine) {
  EXPECT_EQ(FileFailure({"landing.csv", 24, 7, "a level", "\"6x.2\""}).message(),
            "landing.csv, line 24, field 7: expected a level, found \"6x.2\"");
  EXPECT_EQ(FileFailure({"\u00e4\nb\t", 0, 0, "x", "y"}).message(),
            "\u00e4\\x0ab\\t: expected x, found y");
  EXPECT_EQ(FileFailure({"", 0, 0, "x", "y"}).message(), "expected x, found y");
  EXPECT_EQ(shown(std::string(60, 'a')), '"' + std::string(60, 'a') + '"');
  EXPECT_EQ(shown(std::string(61, 'a')), '"' + std::string(57, 'a') + "...\"");
  EXPECT_EQ(shown(std::string(56, 'a') + "\x01 and more!"), '"' + std::string(56, 'a') + "...\"");
}

TEST(DataSTH, WhatCannotBeWrittenLeavesTheDiskAsItWas) {
  const test::Folder folder;
  const std::string path = folder.with("out", "before");
  using Change = void (*)(Read&);
  const std::pair<ErrorCode, Change> rows[] = {
      {ErrorCode::InvalidArgument, [](Read& read) { read.history->HiRec(8); }},
      {ErrorCode::InvalidArgument, [](Read& read) { read.history->spectrum(6)->SPL(25, 1.0); }},
      {ErrorCode::TypeMismatch, [](Read& read) { read.history->spectrum(6)->SPL(18, "loud"); }},
      {ErrorCode::InvalidValue,
       [](Read& read) {
         read.history->spectrum(6)->SPL(18, std::numeric_limits<double>::infinity());
       }},
      {ErrorCode::InvalidValue,
       [](Read& read) { read.history->spectrum(7)->Time()->TODseconds(-1); }},
      {ErrorCode::ObjectNotSet, [](Read& read) { read.history->spectrum(6, nullptr); }},
      {ErrorCode::ObjectNotSet, [](Read& read) { read.header = nullptr; }},
      {ErrorCode::InvalidArgument,
       [](Read& read) { read.history = std::make_shared<AQ_SpectralTimeHistory>(); }}};
  for (const auto& [code, change] : rows) {
    Read read(kGood);
    change(read);
    try {
      static_cast<void>(read.file.writeFile(path, read.header, *read.history));
      ADD_FAILURE() << "written";
    } catch (const Error& error) {
      EXPECT_EQ(error.code(), code) << error.what();
    }
    EXPECT_EQ(contentOf(path), "before");
    EXPECT_FALSE(read.file.lastFailure());
  }
  Read read(kGood);
  EXPECT_EQ(read.file.writeFile("/dev/full", read.header, *read.history), AQ_DATA_FILE_ERROR);
  EXPECT_TRUE(read.file.lastFailure());
}

TEST(DataSTH, LevelsOfAnyNumberTypeAreWritten) {
  const test::Folder folder;
  Read read(kGood);
  read.history->spectrum(5)->SPL(17, std::int16_t{70});
  read.history->spectrum(5)->SPL(18, " 71.5");
  ASSERT_EQ(read.file.writeFile(folder.file("out"), read.header, *read.history), AQ_DATA_OK);
  EXPECT_NE(contentOf(folder.file("out")).find("\n5,10:00:00.25,-0.75,70.00,71.50,-.25\n"),
            std::string::npos);
}

TEST(DataSTH, TheNameMayBePartOfWhatTheCallReplaces) {
  const test::Folder folder;
  Read read(kGood);
  const std::string path = folder.file("a name too long to be kept in the string object itself");
  ASSERT_EQ(read.file.writeFile(path, read.header, *read.history), AQ_DATA_OK);
  std::filesystem::copy_file(kFormat / "bad" / "level-empty.csv", path,
                             std::filesystem::copy_options::overwrite_existing);
  ASSERT_EQ(read.file.readFile(read.header->sFileName, read.header, read.history),
            AQ_DATA_FILE_ERROR);
  EXPECT_EQ(read.file.lastFailure()->file, path);
  ASSERT_EQ(read.file.readFile(read.file.lastFailure()->file, read.header, read.history),
            AQ_DATA_FILE_ERROR);
  EXPECT_EQ(read.file.lastFailure()->file, path);
}

TEST(DataSTH, HeadersWithoutObjectsAndFilesWithoutHeadings) {
  const test::Folder folder;
  Read read(kGood);
  read.header->aqFileDateTime = nullptr;
  read.header->cCommentLines = nullptr;
  ASSERT_EQ(read.file.writeFile(folder.file("out"), read.header, *read.history), AQ_DATA_OK);
  auto lines = test::linesOf(contentOf(folder.file("out")));
  lines.resize(21);
  const Read cut(folder.with("in", test::textOf(lines)));
  EXPECT_EQ(cut.result, AQ_DATA_OK);
  EXPECT_EQ(cut.history->Count(), 0);
}

TEST(DataSTH, BandsBelowTheRangesStartAreNotWrittenShort) {
  const test::Folder folder;
  auto lines = test::linesOf(contentOf(kGood));
  lines[13] = "Bands**,-5,-3";
  Read read(folder.with("in", test::textOf(lines)));
  ASSERT_EQ(read.result, AQ_DATA_OK);
  EXPECT_ERROR(read.file.writeFile(folder.file("out"), read.header, *read.history),
               InvalidArgument);
  lines[13] = "Bands**,19,17";  // an empty range of bands
  const Read none(folder.with("in", test::textOf(lines)));
  EXPECT_EQ(none.history->spectrum(none.history->LoRec())->HighBand(), -1);
}

TEST(DataSTH, RawHeader) {
  const test::Folder folder;
  const auto lines = test::linesOf(contentOf(kGood));
  const auto first = [&](std::size_t count) {
    return folder.with("in",
                       test::textOf({lines.begin(), lines.begin() + static_cast<long>(count)}));
  };
  AQ_DataSTH file;
  std::shared_ptr<Collection<std::string>> header;
  ASSERT_TRUE(file.getRawHeader(kGood, header));
  EXPECT_EQ(header->Count(), 22);
  EXPECT_EQ(header->Item(14), "Bands**,17, 19");
  EXPECT_TRUE(file.getRawHeader(first(10), header));
  EXPECT_EQ(header->Count(), 10);
  EXPECT_FALSE(file.getRawHeader(first(23), header));
  EXPECT_EQ(file.lastFailure()->line, 24U);
  EXPECT_TRUE(file.getRawHeader(first(24), header));
  EXPECT_FALSE(file.getRawHeader(folder.with("in", "FileType, spectral time-history\n"), header));
  EXPECT_EQ(file.lastFailure()->found, "\"FileType, spectral time-history\"");
  EXPECT_EQ(file.lastFailure()->line, 1U);
  EXPECT_EQ(file.lastFailure()->field, 0U);
  EXPECT_TRUE(file.getRawHeader(folder.with("in", "any, Spectral Time-History \n"), header));
  EXPECT_FALSE(file.getRawHeader(first(0), header));
  EXPECT_FALSE(file.getRawHeader(folder.file("none"), header));
  EXPECT_EQ(header->Count(), 1);
}

}  // namespace
}  // namespace aq
