// Tests what the comparison with the second reader does not cover in analyzer recordings: folders,
// text files from other programs, the external converter, settings, and the page on the format.
#include <aq/aq.h>
#include <aq/sdf/layout.h>
#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <cstring>
#include <filesystem>

#include "tests/support/errors.h"
#include "tests/support/files.h"

namespace aq {
namespace {

namespace fs = std::filesystem;

const fs::path kGood = test::kData / "analyzer-recording" / "good";

struct Read {
  std::shared_ptr<AQ_HeaderSTH> header;
  std::shared_ptr<AQ_SpectralTimeHistory> history;
  std::string failure;
};

Read parsed(const std::string& path, std::int16_t channel = 1) {
  AQ_DataHP3565 file;
  file.Channel(channel);
  Read read;
  const AQ_DataMessage result = file.ParseASC(path, read.header, read.history);
  if (const auto failure = file.lastFailure()) {
    read.failure = failure->message();
    EXPECT_TRUE(failure->line != 0 || failure->field == 0);
  }
  EXPECT_EQ(result == AQ_DATA_OK, read.failure.empty() && read.header && read.history);
  EXPECT_EQ(read.history != nullptr, read.header != nullptr);
  return read;
}

std::string textOf(const std::string& sample, const test::Folder& folder) {
  AQ_DataHP3565 file;
  EXPECT_EQ(file.DAT_to_ASC((kGood / sample).string(), folder.file("a.asc")), AQ_DATA_OK);
  return test::contentOf(folder.file("a.asc"));
}

std::string namesOf(const Collection<std::string>& names) {
  std::string text;
  for (const std::string& name : names) text += name + ' ';
  return text;
}

TEST(Analyzer, ListsAFolder) {
  const test::Folder folder;
  for (const char* const name : {"index", "INDEX.DAT", "TimeDat.1", "b.DAT", "A.dat", "B.dat",
                                 "c.dat.bak", "notes.txt", ".dat"}) {
    static_cast<void>(folder.with(name, "x"));
  }
  fs::create_directory(folder.file("folder.dat"));
  std::error_code none;  // set where the system has no symbolic links
  fs::create_symlink(folder.file("A.dat"), folder.file("link.DAT"), none);
  fs::create_symlink(folder.file("gone"), folder.file("dangling.DAT"), none);
  AQ_DataHP3565 file;
  std::shared_ptr<Collection<std::string>> index, times, recordings;
  ASSERT_EQ(file.readDirectory(folder.file(""), index, times, recordings), AQ_DATA_OK);
  EXPECT_EQ(namesOf(*index), "index INDEX.DAT ");
  EXPECT_EQ(namesOf(*times), "TimeDat.1 ");
  const bool caseless = fs::exists(folder.file("B.DAT"));
  const std::string listed = std::string(".dat A.dat ") + (caseless ? "" : "B.dat ") + "b.DAT " +
                             (none ? "" : "link.DAT ");
  EXPECT_EQ(namesOf(*recordings), listed);
  EXPECT_EQ(file.readDirectory(folder.file("none"), index, times, recordings), AQ_DATA_FILE_ERROR);
  EXPECT_EQ(file.lastFailure()->message(),
            "cannot read " + folder.file("none") + ": No such file or directory");
  EXPECT_EQ(namesOf(*recordings), listed);
}

TEST(Analyzer, TextIsThatOfTheInstrument) {
  const test::Folder folder;
  const auto lines = test::linesOf(textOf("third-octaves-by-scan.dat", folder));
  const std::string expected = test::contentOf(kGood / "third-octaves-by-scan.asc");
  EXPECT_EQ(test::textOf(lines), expected);
  AQ_DataHP3565 file;
  EXPECT_EQ(file.DAT_to_ASC(folder.file("a.asc"), folder.file("b.asc")), AQ_DATA_FILE_ERROR);
  EXPECT_FALSE(fs::exists(folder.file("b.asc")));
  const std::string copy = folder.with("a.dat", test::contentOf(kGood / "auto-power.dat"));
  EXPECT_EQ(file.DAT_to_ASC(copy, copy), AQ_DATA_FILE_ERROR);
  EXPECT_EQ(file.lastFailure()->found, "an analyzer recording");
}

const std::string kHeaders = R"(Print of a file
==========
SDF_FILE_HDR
revisionNum: 2
applic: hp 35670a
yearStamp:                    2004
monthDayStamp 0315
hourMinStamp 1402
==========
SDF_MEAS_HDR
recordSize                    140
averageType                   RMS exponential
measTitle                     "Over: 7\x5c"
startFreqIndexOld 1
stopFreqIndexOld 2
SDF_DATA_HDR
domain                        octave
dataType                      third octave
num_of_pointsOld              4
last_valid_indexOld           3
xResolution_type              LOG_RES
ydata_type                    float32
yPerPoint                     1
yIsPowerData                  1
yIsValid                      1
first_VECTOR_recordNum        -1
total_rows                    2
total_cols                    1
yUnitValid                    1
yUnit.label                   "Pa"
yUnit.factor                  1
yUnit.mass                    2
yUnit.length                  -2
yUnit.time                    -4
abscissa_firstX               100
abscissa_deltaX               1.2589254117941673
other                         field
)";

std::string levelsOf(const Read& read) {
  if (!read.history) return read.failure;
  std::string text;
  for (const auto& [number, spectrum] : *read.history) {
    for (const auto& [band, level] : *spectrum) {
      text += std::to_string(band) + ' ' + std::to_string(std::lround(level.toDouble())) + ' ';
    }
  }
  return text;
}

/// Values are in Pa^2; 4e-10 Pa^2 is 0 dB.
TEST(Analyzer, ReadsTextsOfOtherPrograms) {
  const test::Folder folder;
  const std::string path = folder.file("a.txt");
  const std::string all = "20 0 21 10 22 20 23 30 ";
  const struct {
    std::string values;
    std::int16_t channel;
    std::string levels;
  } kCases[] = {
      {"4e-10\n4e-9\n4e-8\n4e-7\n", 1, all},
      {"4e-10\n4e-9\n4e-8\n4e-7\n", 2, all},  // only the channel's row was printed
      {"4e-10 4e-9 4e-8\n4e-7\n", 1, all},
      {"100 4e-10\n125 4e-9\n160 4e-8\n200 4e-7\n", 1, all},
      {"1\n1\n1\n1\n----\n4e-10\n4e-9\n4e-8\n4e-7\n", 2, all},  // both rows were printed
      {"4e-10\n4e-9\n", 1, "21 0 22 10 "},                      // aliased points were not printed
      {"SDF_YDATA_HDR\ndata 0\nvector: 1\nscan 0\n4e-10\n4e-9\n4e-8\n4e-7\n", 2, all},
      {"4e-10\n4e-9\n4e-8\n4e-7\n1\n", 1, ", line 42: expected values of 4 points, found 5 values"},
      {"4e-10\n", 1, ", line 38: expected values of 4 points, found 1 values"},
      {"100 4e-10\n125\n", 1, ", line 39: expected an x and a y, found \"125\""},
      {"SDF_YDATA_HDR\ndata x\n1\n", 1,
       ", line 39, field 2: expected a number for data, found \"x\""},
      {"SDF_YDATA_HDR\ndata 3\nvector 0\nscan 0\n1\n", 1,
       ", line 42: expected a data header number below 1, found 3"},
      {"SDF_YDATA_HDR\ndata 0\nvector 1\nscan 0\n1\n2\n3\n4\n", 1,
       ": expected the values of data 0, vector 0, scan 0, found none"},
      {"SDF_YDATA_HDR\ndata 0\nvector 0\nscan 0\n1\n2\n3\n4\n5\n", 1,
       ", line 46: expected 4 values, found 5"},
      {"SDF_YDATA_HDR\ndata 0\nvector 0\nscan 0\n1\n2\n3\n4\n-----\nSDF_YDATA_HDR\ndata 0\n1\n", 1,
       ", line 49: expected data, vector and scan numbers, as other values have, found none"},
      {"SDF_YDATA_HDR\ndata 0\nvector 0\nscan 0\n1\n2\n3\n4\n"
       "SDF_YDATA_HDR\ndata 0\nvector 0\nscan 0\n1\n2\n3\n4\n",
       1, ", line 53: expected values of another trace or scan, found those of one given before"},
      {"SDF_YDATA_HDR\n4e-10\n4e-9\nSDF_YDATA_HDR\n4e-8\n4e-7\n", 1, all},
      {"SDF_YDATA_HDR\n1\n2\nSDF_YDATA_HDR\n3\n4\n5\n", 1,
       ", line 44: expected values of 4 points, found 5 values"},
      {"4e-10\n4e-9\n4e-8\n4e-7\n", 3, ": expected SDF_DATA_HDR with channel 3, found 2 of them"},
      {"", 1, ": expected values of a recording, found none"}};
  for (const auto& [values, channel, levels] : kCases) {
    SCOPED_TRACE(values);
    static_cast<void>(folder.with("a.txt", kHeaders + values));
    const std::string found = levelsOf(parsed(path, channel));
    EXPECT_EQ(found.substr(found.starts_with(path) ? path.size() : 0), levels);
  }
  const std::array<const char*, 3> kChanged[] = {
      {"yUnit.factor                  1", "yUnit.factor 0",
       ": expected SDF_DATA_HDR with a finite factor to its unit, other than 0, found 0"},
      {"yUnitValid                    1", "yUnitValid 0",
       ": expected SDF_DATA_HDR with a yUnitValid of 1, as its trace has no channel, found 0"},
      {"recordSize                    140", "recordSize 5",
       ", line 11, field 2: expected a size of 6 or more, found \"5\""},
      {"recordSize                    140", "startFreqIndex 1\nstopFreqIndex 2", ""},  // revision 3
      {"yIsPowerData                  1", "yIsPowerData 1\nyIsPowerData[1] 0\nyIsPowerData[x] 0",
       ""}};
  for (const auto& [from, to, failure] : kChanged) {
    std::string headers = kHeaders;
    headers.replace(headers.find(from), std::strlen(from), to);
    static_cast<void>(folder.with("a.txt", headers + "4e-10 4e-9 4e-8 4e-7"));
    EXPECT_EQ(levelsOf(parsed(path)), *failure != '\0' ? path + failure : all);
  }
  const Read read = parsed(folder.with("a.txt", kHeaders + "4e-10 4e-9 4e-8 4e-7"));
  EXPECT_EQ(read.header->sProjectName, "Over: 7\\");
  EXPECT_EQ(read.header->sGeneratedBy, "HP 35670A");
  EXPECT_EQ(read.history->AverageMethod(), AQ_CONTEXPO);
  EXPECT_EQ(read.history->startTime()->TODstring(), "14:02:00");
}

TEST(Analyzer, RejectsTextsThatContradictThemselves) {
  const test::Folder folder;
  const std::string text = test::contentOf(kGood / "third-octaves-by-scan.asc");
  const std::string time =
      "scanUnit.factor               1\nscanUnit.mass                 0\n"
      "scanUnit.length               0\nscanUnit.time                 -2";
  const std::array<std::string, 3> kChanged[] = {
      {"scan_type                     SCAN", "scan_type 7",
       ": expected SDF_SCANS_BIG with a scan_type of 0 or 1, found 7"},
      {time, "scanUnit.factor 1e30\nscanUnit.time 2",
       ": expected SDF_SCANS_VAR with a plausible time for scan 1, found 5.000000075237331e+29"},
  };
  for (const auto& [from, to, failure] : kChanged) {
    std::string changed = text;
    changed.replace(changed.find(from), from.size(), to);
    const std::string path = folder.with("a.txt", changed);
    EXPECT_EQ(levelsOf(parsed(path)), path + failure);
  }
}

TEST(Analyzer, ReadsAColumnOfValuesWithTheHeadersBesideIt) {
  const test::Folder folder;
  const std::string values = folder.with("a.TXT", "4e-10\n4e-9\n4e-8\n4e-7\n");
  EXPECT_EQ(levelsOf(parsed(values)),
            values + ": expected the headers of a recording, here or in a.HDR, found none");
  static_cast<void>(folder.with("a.HDR", kHeaders));
  EXPECT_EQ(levelsOf(parsed(values)), "20 0 21 10 22 20 23 30 ");
  static_cast<void>(folder.with("a.HDR", kHeaders + "total_rows two\n"));
  EXPECT_EQ(levelsOf(parsed(values)), values +
                                          ": expected a number for total_rows in line 38 of "
                                          "a.HDR, found \"two\"");
}

TEST(Analyzer, RunsAnExternalConverterWithoutAShell) {
  const test::Folder folder;
  const std::string recording = (kGood / "third-octaves-by-scan.dat").string();
  const auto converter = [&](const std::string& script) {
    const std::string path = folder.with("convert it", "#!/bin/sh\n" + script);
    fs::permissions(path, fs::perms::owner_all);
    return path;
  };
  AQ_DataHP3565 file;
  file.Channel(2);
  const std::string text = folder.file("$(a).asc");
  const auto run = [&](const std::string& path) {
    file.SDFPRINT(path);
    file.DAT_to_ASC(recording, text);
    return file.lastFailure() ? file.lastFailure()->expected + ", " + file.lastFailure()->found
                              : test::contentOf(text);
  };
  EXPECT_EQ(run(converter("cat; echo \"$@\"; echo no >&2")), recording + " /D:2 /R:2\n");
  EXPECT_EQ(run(converter("echo half; exit 3")), "a program that exits with status 0, status 3");
  EXPECT_EQ(run(converter("kill -9 $$")), "a program that exits with status 0, signal 9");
  EXPECT_EQ(run(converter("")), "text from " + shown(folder.file("convert it")) + ", none");
  EXPECT_EQ(run(folder.file("none")), "a program that can be run, No such file or directory");
  EXPECT_EQ(test::contentOf(text), recording + " /D:2 /R:2\n");  // unchanged since the first run
}

TEST(Analyzer, SettingsAreCheckedAndUsed) {
  AQ_DataHP3565 file;
  EXPECT_ERROR(file.RecordLength(0), InvalidValue);
  EXPECT_ERROR(file.RecordLength(std::nan("")), InvalidValue);
  EXPECT_ERROR(file.CalAdj(HUGE_VAL), InvalidValue);
  file.RecordLength(0.25);
  EXPECT_EQ(file.RecordLength(), 0.25);
  const auto first = [&] {
    std::shared_ptr<AQ_HeaderSTH> header;
    std::shared_ptr<AQ_SpectralTimeHistory> history;
    EXPECT_EQ(file.readFile((kGood / "third-octaves-by-scan.dat").string(), header, history),
              AQ_DATA_OK);
    return std::pair(header, history->spectrum(history->HiRec()));
  };
  const double before = first().second->SPL(first().second->LowBand()).toDouble();
  file.CalAdj(3.01);
  const auto [header, spectrum] = first();
  EXPECT_NEAR(spectrum->SPL(spectrum->LowBand()).toDouble(), before + 3.01, 1e-12);
  EXPECT_EQ(header->cCommentLines->Item(3), "Calibration of 3.01 dB added");
  file.Channel(9);
  std::shared_ptr<AQ_HeaderSTH> none;
  std::shared_ptr<AQ_SpectralTimeHistory> nothing;
  EXPECT_EQ(file.readFile((kGood / "auto-power.dat").string(), none, nothing), AQ_DATA_FILE_ERROR);
  EXPECT_TRUE(!none && !nothing);
}

TEST(Analyzer, PageHasEveryFieldAndItsFirstByte) {
  std::string page = test::contentOf(test::kData / "../../docs/formats/analyzer-recording.md");
  for (std::size_t end = 0; (end = page.find("\n  ", end)) != page.npos;) page.replace(end, 3, " ");
  for (const auto type :
       {sdf::RecordType::File, sdf::RecordType::Measurement, sdf::RecordType::Data,
        sdf::RecordType::Vector, sdf::RecordType::Channel, sdf::RecordType::Scans,
        sdf::RecordType::ManyScans, sdf::RecordType::ScanVariable, sdf::RecordType::Comment}) {
    const sdf::AnyLayout& layout = sdf::layoutOf(type);
    const std::size_t begin = page.find("- `" + std::string(layout.name) + "`: ");
    ASSERT_NE(begin, page.npos) << layout.name;
    const std::string line = page.substr(begin, page.find('\n', begin) - begin);
    for (const sdf::Field& field : layout.fields) {
      const std::string text = "`" + std::string(field.name) + "` " + std::to_string(field.first);
      EXPECT_NE(line.find(text + ' '), line.npos) << text;
    }
  }
}

}  // namespace
}  // namespace aq
