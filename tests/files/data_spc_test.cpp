// Tests what the fixed-column samples do not cover, such as parts of a history, dates, and rejected
// calls.
#include <aq/aq.h>
#include <gtest/gtest.h>

#include <cmath>

#include "tests/support/errors.h"
#include "tests/support/files.h"

namespace aq {
namespace {

constexpr const char* kSample = "fixed-column-history/good/landing.spc";

struct Spc : testing::Test {
  test::Folder folder;
  AQ_DataSPC file;
  std::shared_ptr<AQ_HeaderSTH> header;
  std::shared_ptr<AQ_SpectralTimeHistory> history;

  void SetUp() override {
    ASSERT_EQ(file.readFile((test::kData / kSample).string(), header, history), AQ_DATA_OK);
  }
  /// The data lines of the file written with the current settings.
  std::vector<std::string> dataLines() {
    const std::string path = folder.file("part.spc");
    EXPECT_EQ(file.writeFile(path, *history), AQ_DATA_OK);
    auto lines = test::linesOf(test::contentOf(path));
    lines.erase(lines.begin(), lines.begin() + 20);
    return lines;
  }
  std::string failureOf(const std::string& content) {
    EXPECT_EQ(file.readFile(folder.with("x.spc", content), header, history), AQ_DATA_FILE_ERROR);
    return file.lastFailure()->message();
  }
};

TEST_F(Spc, PartsByItsSettings) {
  file.NumberFirstRecord(2);
  file.NumberLastRecord(2);
  file.BandLow(30);
  file.BandHigh(31);
  EXPECT_EQ(dataLines(),
            (std::vector<std::string>{"     2  14:02:37.750      -2.750           58.40"}));
  file.BandLow(28);
  file.BandHigh(0);
  EXPECT_EQ(dataLines(), (std::vector<std::string>{
                             "     2  14:02:37.750      -2.750           62.10           58.40"
                             "   55.07"}));
}

TEST_F(Spc, EndsOfTheBandRange) {
  AQ_SpectralTimeHistory wide;
  const auto spectrum = std::make_shared<AQ_Spectrum>();
  spectrum->SPL(2, -9999.99);
  spectrum->SPL(50, 99999.994);
  wide.spectrum(-32768, spectrum);
  AQ_DataSPC writer;
  const std::string path = folder.file("wide.spc");
  ASSERT_EQ(writer.writeFile(path, wide), AQ_DATA_OK);
  ASSERT_EQ(file.readFile(path, header, history), AQ_DATA_OK);
  const AQ_Spectrum& again = *history->spectrum(-32768);
  EXPECT_EQ(again.SPL(2).toDouble(), -9999.99);
  EXPECT_EQ(again.SPL(50).toDouble(), 99999.99);
  EXPECT_FALSE(again.contains(3));
  EXPECT_EQ(header->sProjectName, "");
}

TEST_F(Spc, RoundsExactHalvesAwayFromZero) {
  const AQ_Spectrum& before = *history->spectrum(1);
  const auto spectrum = std::make_shared<AQ_Spectrum>();
  const double levels[] = {0.125, -0.125, 2.675, -0.004};
  for (std::int16_t i = 0; i < 4; ++i) {
    spectrum->SPL(static_cast<std::int16_t>(29 + i), levels[i]);
  }
  spectrum->Time()->assignSeconds(before.timeValue().TODseconds() + 0.0625, -0.0004);
  history->spectrum(1, spectrum);
  EXPECT_EQ(dataLines().front(),
            "     1  14:02:37.313       0.000    0.13   -0.13    2.67    0.00");
}

TEST_F(Spc, LineEndsAndBlanksMakeNoDifference) {
  const std::string good = test::contentOf(test::kData / kSample);
  std::string dos;
  for (const char c : good) dos += c == '\n' ? std::string("\r\n") : std::string(1, c);
  std::string padded = good + "\n  \n";
  padded.insert(padded.find("   55.07") + 8, "    ");
  for (const std::string& content : {dos, padded, good.substr(0, good.size() - 1)}) {
    ASSERT_EQ(file.readFile(folder.with("x.spc", content), header, history), AQ_DATA_OK);
    ASSERT_EQ(file.writeFile(folder.file("x.spc"), *history), AQ_DATA_OK);
    EXPECT_EQ(test::contentOf(folder.file("x.spc")), good);
  }
}

TEST_F(Spc, ACutIsFoundAtEveryLine) {
  const std::string good = test::contentOf(test::kData / kSample);
  for (std::size_t end = good.find('\n'); end + 1 < good.size(); end = good.find('\n', end + 1)) {
    EXPECT_TRUE(failureOf(good.substr(0, end + 1)).ends_with("found the end of the file"));
  }
}

TEST_F(Spc, RecordZeroAndNoRecord) {
  AQ_SpectralTimeHistory some;
  EXPECT_ERROR(AQ_DataSPC().writeFile(folder.file("x.spc"), some), InvalidArgument);
  for (std::int16_t record = 0; record < 3; ++record) some.spectrum(record, history->spectrum(1));
  some.LoRec();  // changes a lowest number of 0 to 1
  AQ_DataSPC writer;
  ASSERT_EQ(writer.writeFile(folder.file("x.spc"), some), AQ_DATA_OK);
  ASSERT_EQ(file.readFile(folder.file("x.spc"), header, history), AQ_DATA_OK);
  EXPECT_EQ(file.NumberFirstRecord(), 0);
  some.spectrum(7, std::make_shared<AQ_Spectrum>());
  writer.NumberFirstRecord(7);
  EXPECT_ERROR(writer.writeFile(folder.file("x.spc"), some), InvalidValue);
  writer.BandLow(17);
  writer.BandHigh(20);
  EXPECT_EQ(writer.writeFile(folder.file("x.spc"), some), AQ_DATA_OK);
}

TEST_F(Spc, KnowsWhetherDatesAreKept) {
  EXPECT_TRUE(keepsDates(*history));
  history->spectrum(2)->Time()->CurrentDate(0);
  EXPECT_TRUE(keepsDates(*history));
  history->spectrum(3)->Time()->CurrentDate(38062);
  EXPECT_FALSE(keepsDates(*history));
  history->spectrum(3)->Time()->TODseconds(0);
  EXPECT_TRUE(keepsDates(*history));
  history->spectrum(9, nullptr);
  EXPECT_ERROR(keepsDates(*history), ObjectNotSet);
}

TEST_F(Spc, RejectsWhatColumnsCannotHold) {
  const std::string path = folder.with("kept.spc", "kept");
  AQ_Spectrum& spectrum = *history->spectrum(2);
  const auto write = [&] { return file.writeFile(path, *history); };
  const auto refusesLevel = [&](double level) {
    spectrum.SPL(29, level);
    EXPECT_ERROR(write(), InvalidValue);
    spectrum.SPL(29, 60.0);
  };
  for (const double level : {99999.996, -9999.996, std::nan("")}) refusesLevel(level);
  for (const double relative : {1e8, -1e7}) {
    spectrum.Time()->RelSeconds(relative);
    EXPECT_ERROR(write(), InvalidValue);
  }
  spectrum.Time()->RelSeconds(0);
  for (const double timeOfDay : {-0.001, 86399.9996}) {
    spectrum.Time()->assignSeconds(timeOfDay, 0);
    EXPECT_ERROR(write(), InvalidValue);
  }
  spectrum.Time()->assignSeconds(0, 0);
  for (const char* const text : {"two\nlines", "a\ttab"}) {
    header->sProjectName = text;
    EXPECT_ERROR(write(), InvalidValue);
  }
  header->sProjectName = "";
  history->AverageMethod(static_cast<AQ_AverageMethod>(7));
  EXPECT_ERROR(write(), InvalidValue);
  history->AverageMethod(AQ_NA);
  file.BandLow(1);
  EXPECT_ERROR(write(), InvalidValue);
  file.BandLow(0);
  file.NumberLastRecord(4);
  EXPECT_ERROR(write(), InvalidArgument);
  for (const double length : {0.0, 1000.0, -1.0}) {
    EXPECT_ERROR(file.RecordLength(length), InvalidValue);
  }
  EXPECT_EQ(file.RecordLength(), 0.5);
  file.NumberLastRecord(0);
  EXPECT_ERROR((file.RecordLength(0.0004), write()), InvalidValue);
  file.RecordLength(0.5);
  for (int line = 0; line <= 32767; ++line) header->cCommentLines->Add("");
  EXPECT_ERROR(write(), InvalidValue);
  EXPECT_EQ(test::contentOf(path), "kept");
}

TEST_F(Spc, SettingsAreThoseOfTheFileThatWasRead) {
  EXPECT_EQ(file.NumberFirstRecord(), 1);
  EXPECT_EQ(file.NumberLastRecord(), 3);
  EXPECT_EQ(file.BandLow(), 29);
  EXPECT_EQ(file.BandHigh(), 32);
  EXPECT_EQ(history->ReferenceType(), AQ_PMAX);
}

TEST_F(Spc, FailuresNameColumns) {
  const std::string good = test::contentOf(test::kData / kSample);
  struct Row {
    const char* from;
    const char* to;
    const char* message;
  };
  const Row rows[] = {
      {"   62.10", "   6x.51",
       "line 22, field 4: expected a level in columns 33 to 40, found \"6x.51\""},
      {"   55.07", "********",
       "line 22, field 7: expected a level in columns 57 to 64, found \"********\""},
      {"   55.07", "   55.07 x",
       "line 22, field 8: expected nothing from column 65 on, found \"x\""},
      {"   55.07", "\t  55.07",
       "line 22, field 7: expected a level in columns 57 to 64, found \"\\t  55.07\""},
      {"     2  14", "     3  14",
       "line 22, field 1: expected the record number 2 in columns 1 to 6, found \"3\""},
      {"14:02:37.750", "24:00:00.000",
       "line 22, field 2: expected a time of day hh:mm:ss.sss in columns 7 to 20, found "
       "\"24:00:00.000\""},
      {"TRUSLO", "FAST",
       "line 4, field 2: expected an averaging method from column 21 on, found \"FAST\""},
      {"BandLow ", "BandHigh",
       "line 13, field 1: expected the keyword BandLow in columns 1 to 20, found \"BandHigh\""},
      {"NumberLastRecord           3", "NumberLastRecord           2",
       "line 23: expected no more records than the header says, found \"     3  14:02:38.250      "
       "-2.250   -0.25    0.50   57.90 ...\""},
      {"NumberLastRecord           3", "NumberLastRecord           4",
       "line 24: expected the line of record 4, found the end of the file"},
      {"SPC                 1", "SPC                 2",
       "line 1, field 2: expected layout version 1 from column 21 on, found \"2\""}};
  for (const Row& row : rows) {
    std::string bad = good;
    bad.replace(bad.find(row.from), std::string_view(row.from).size(), row.to);
    const std::string message = failureOf(bad);
    EXPECT_TRUE(message.ends_with(row.message)) << message;
  }
}

}  // namespace
}  // namespace aq
