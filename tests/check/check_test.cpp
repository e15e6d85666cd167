// Most of these tests change one place in a clean sample and compare the findings with those
// expected.
#include <aq/check/check_file.h>
#include <aq/check/same_levels.h>
#include <aq/files/formats.h>
#include <aq/files/late_times.h>
#include <aq/noise/emission_geometry.h>
#include <gtest/gtest.h>

#include <array>
#include <cstring>
#include <set>

#include "tests/support/errors.h"
#include "tests/support/files.h"

namespace aq {
namespace {

const std::filesystem::path kSamples = test::kData / "../../examples/data";

std::string replaced(std::string text, const std::string& from, const std::string& to) {
  const std::size_t at = text.find(from);
  EXPECT_NE(at, text.npos) << from;
  return at == text.npos ? text : text.replace(at, from.size(), to);
}

/// A finding in short form, such as `24:3 level-range r5 b19`.
std::string shortForm(const Finding& finding) {
  std::string text = std::to_string(finding.place.line) + ':' +
                     std::to_string(finding.place.field) + ' ' + std::string(finding.kind.name);
  if (finding.place.record) text += " r" + std::to_string(*finding.place.record);
  if (finding.place.band) text += " b" + std::to_string(*finding.place.band);
  return text;
}

std::vector<std::string> findingsIn(const std::string& path) {
  std::vector<std::string> found;
  checkFile(path, [&](const Finding& finding) {
    EXPECT_FALSE(finding.message.empty());
    found.push_back(shortForm(finding));
  });
  return found;
}

struct Change {
  std::string sample;
  std::string from;
  std::string to;
  std::vector<std::string> findings;
};

const std::string kHistory = "fly-over.sth.csv";
const std::string kMap = "fly-over.mask.csv";
const Change kChanges[] = {
    {kHistory, "Fly-over", "Fly-over", {}},
    {kHistory, "61.48", "6x.2", {"22:5 unreadable"}},
    {kHistory, "Spectral Time-History", "Landing", {"1:0 unknown-kind"}},
    {kHistory, "FileType**,Spectral Time-History", "record,AWT,CWT", {"1:0 table"}},
    {kHistory, "Bands**,17, 40", "Bands**,-6, 17", {}},  // a band below 2 has no label
    {kHistory, "ProjectName**", "microphoneid**", {"4:1 keyword"}},
    {kHistory, "Fly-over sample", "Fly-over**sample", {"4:0 lost-text"}},
    {kHistory, "MicrophoneID**,", "MicrophoneID**", {"5:0 lost-text"}},
    {kHistory, "not a measurement", "not a ** measurement", {"20:0 lost-text"}},
    {kHistory, "Numbers**,1,60", "Numbers**,1,60, ,7", {"13:5 lost-text"}},
    {kHistory, "Method**,", "Method**,X", {"6:2 other-word"}},
    {kHistory, "StampType**,", "StampType**,X", {"7:2 other-word"}},
    {kHistory, "Spectrum**,60", "Spectrum**,59", {"12:2 record-count"}},
    {kHistory, "Numbers**,1,60", "Numbers**,0,60", {"13:2 record-range"}},
    {kHistory, "B18/63Hz", "B18/64Hz", {"21:5 heading"}},
    {kHistory, ",B40/10kHz", "", {"21:0 heading"}},
    {kHistory,
     "\n2,14",
     "\n1,14",
     {"9:2 start-time", "23:1 record-repeated r1", "24:1 record-gap r3", "24:2 time-step r3"}},
    {kHistory,
     "\n4,14",
     "\n3,14",
     {"25:1 record-repeated r3", "25:2 time-step r3", "26:1 record-gap r5"}},
    {kHistory,
     "\n3,14:30:01.25",
     "\n61,14:30:30.25",
     {"13:2 record-range", "24:3 relative-time r61", "25:1 record-falls r4", "25:1 record-gap r4"}},
    {kHistory,
     "\n60,14:30:29.75,15",
     "\n1,14:30:00.25,-14.5",
     {"13:2 record-range", "81:1 second-data-set r1"}},
    {kHistory, "Time**,14:30:00\n", "Time**,14:31:00\n", {"9:2 start-time"}},
    {kHistory, "StartTime**,14:30:00", "StartTime**,14:29:59.98", {}},
    {kHistory, ",OVERHEAD", ",PEAK", {"11:2 other-word"}},
    {kHistory, "FileName**,fly-over.sth", "FileName**,C:\\other", {"2:2 file-name"}},
    {kHistory, "FileName**,fly-over.sth", "FileName**,Fly-Over.sth", {}},
    {kHistory, "FileName**,fly-over.sth", "FileName**,none", {"2:2 renamed"}},
    {kHistory, "GenerationFile**,", "GenerationFile**,none", {"16:2 source-missing"}},
    {kHistory,
     "FileType**,",
     "\xEF\xBB\xBF"
     "FileType**,",
     {"1:0 byte-order-mark"}},
    {kHistory, "FileType**,", "\"FileType**\",", {"1:0 quotes"}},
    {kHistory,
     "FileType**,Spectral Time-History",
     "FileType**,Spectral Time-History,,",
     {"1:0 spreadsheet"}},
    {kHistory, "FileType", "\x1F\x8B", {"1:0 compressed"}},
    {kHistory, "FileType", "\xFF\xFE", {"1:0 utf-16"}},
    {kHistory, "-History\n", "-History\r", {"1:0 line-ends"}},
    {kHistory, "\n3,14", ",,\n3,14", {"23:28 extra-fields"}},
    {kHistory, "14:30:01.25", "14:30:01.45", {"24:2 time-step r3"}},
    {kHistory, "14:30:14.75", "14:30:15.75", {"22:3 relative-time r1"}},
    {kHistory, "61.62", "200.00", {"23:5 level-jump r2 b18"}},
    {kHistory, "61.62", "-20.00", {"23:5 level-jump r2 b18"}},
    {kHistory, "61.62", "200.01", {"23:5 level-range r2 b18"}},
    {kHistory, "61.62", "-20.01", {"23:5 level-range r2 b18"}},
    {kHistory, "61.62", "9999", {"23:5 level-invalid r2 b18"}},
    {kHistory, "\n3,14", ",1\n3,14", {"23:28 extra-fields"}},
    {kHistory, ",62.66,", ",62.6,", {"22:8 lost-digits"}},
    {kHistory, ",62.66,", ",6E1,", {"22:8 lost-digits"}},
    {kHistory, ",62.91,", ",2.91,", {"23:8 level-jump r2 b21"}},
    {kHistory, ",62.91,", ",162.91,", {"23:8 level-jump r2 b21"}},
    {kHistory, ",62.91,", ",92.91,", {}},  // a bird may cause such a jump
    {kMap, "FileName**,fly-over.mask.csv", "FileName**,other.csv", {"2:2 file-name"}},
    {kMap, "NumberOfRows**,60", "NumberOfRows**,61", {"4:2 record-count"}},
    {kMap, "2,M-,M-", "2,MX,M-", {"13:2 mask-letters r2 b17"}},
    {kMap, "B18/63Hz", "B18/64Hz", {"11:3 heading"}},
    {kMap, ",36\n2,", ",36,1\n2,", {"12:27 extra-fields"}},
    {kMap, "M-,36\n2,", "MX,36\n2,", {"12:25 mask-letters r1 b40"}},
    {kMap, "2,M-,M-", "2,M-,M", {"13:3 unreadable"}},
    {kMap, "M-,36", "M-,37", {"12:26 last-good-band r1"}},
    {kMap, "\n5,M", "\n6,M", {"17:1 record-repeated r6", "17:1 record-gap r6"}},
    {"fly-over.ssr.csv", "60.00", "9999", {"7:1 level-invalid b17"}},
    {"fly-over.ssr.csv", "B18/63Hz", "B18", {"6:2 heading"}},
    {"fly-over.ssr.csv", "34.70\n", "34.70\n\n1\n2\n", {"9:0 second-data-set"}},
    {"fly-over.mic.csv", "1.2\n", "1.2\n1,2,3,4\n", {"10:0 second-data-set"}},
    {"fly-over.mic.csv", "1.2\n", "x\n", {"9:4 unreadable"}},
    {"fly-over.mic.csv", "1.2\n", "1.2", {"9:4 cut-short"}},
    {"fly-over.mic.csv", "1.2\n", "1.\n", {"9:4 cut-short"}},
    {"fly-over.mic.csv", "X,Y,Z", "Y,X,Z", {"8:1 heading"}},
    {"fly-over.mic.csv", "0,0,0,1.2", "0,5,-1,25,0,1,2", {"9:0 decimal-comma"}},
    {"fly-over.ssr.csv", "34.70\n", "34.7", {"7:24 cut-short"}},
    {"fly-over.ini.csv", "HiRec**, 60\n", "HiRec**, 6", {"9:0 cut-short"}},
    {"fly-over.ini.csv", "LoRec**, 1\n", "LoRec**, 61\n", {"0:0 contradiction"}},
    {"fly-over.ini.csv", "PrWndo**, 10", "PrWndo**, -10", {"0:0 contradiction"}},
    {"fly-over.ini.csv", "FileName**,fly", "FileName**,x", {"2:2 renamed"}},
    {"fly-over.ini.csv", "Lines**,0\n", "Lines**,1\na,b\n", {"5:2 lost-text"}},
    {"fly-over.ini.csv", "MIDPT", "MIDDLE", {"5:2 other-word"}},
    {"fly-over.ini.csv", "NuTimg", "NuAvg", {"5:2 other-word"}},
    {"fly-over.ini.csv", "MIDPT", "MIDPT,x", {"5:3 lost-text"}},
    {"fly-over.ini.csv", "PrWndo**, 10", "PrWndo**, 10,x", {"6:3 lost-text"}},
    {"fly-over.ini.csv", "PrWndo**, 10", "PrWndo**, 10,5", {"6:3 decimal-comma"}},
    {"fly-over.ini.csv", "PrWndo", "PreWindow", {"6:0 unknown-keyword"}},
    {"fly-over.tspi.csv",
     "14:30:00.4,0",
     "14:30:00.1,3",
     {"9:1 time-order", "9:2 fix-rejected", "24:2 fix-rejected", "64:2 fix-rejected",
      "104:2 fix-rejected", "144:2 fix-rejected"}},
};

TEST(Check, OneChangeIsFoundWhereItWasMade) {
  const test::Folder folder;
  static_cast<void>(folder.with("other.csv", ""));
  static_cast<void>(folder.with(kHistory, ""));  // the history that the map names
  for (const Change& change : kChanges) {
    SCOPED_TRACE(change.sample + ": " + change.from + " > " + change.to);
    const std::string text = test::contentOf(kSamples / change.sample);
    const std::string path = folder.with(change.sample, replaced(text, change.from, change.to));
    EXPECT_EQ(findingsIn(path), change.findings);
  }
  const std::string history = test::contentOf(kSamples / kHistory);
  for (const auto& [type, start] :
       {std::array{"START", "14:30:00.25"}, std::array{"END", "14:29:59.75"},
        std::array{"ICAOSLO", "14:30:00.5"}, std::array{"OLDSLO", "14:30:00.75"}}) {
    const std::string typed = replaced(history, "MIDPT", type);
    const std::string path = folder.with(kHistory, typed);
    EXPECT_EQ(findingsIn(path), std::vector<std::string>{"9:2 start-time"}) << type;
    static_cast<void>(
        folder.with(kHistory, replaced(typed, "14:30:00\n", std::string(start) + "\n")));
    EXPECT_EQ(findingsIn(path), std::vector<std::string>()) << type;
  }
  const auto lastOf = [&](const char* from, const char* to) {
    std::string last;
    checkFile(folder.with("changed", replaced(history, from, to)),
              [&](const Finding& found) { last = found.message; });
    return last;
  };
  EXPECT_EQ(lastOf(",B40/10kHz", ""), "expected 27 headings, found 26");
  EXPECT_EQ(lastOf("Name**,F", "Name**xF"), "\"x\" in place of a comma is ignored");
  EXPECT_EQ(findingsIn(folder.file("none")), std::vector<std::string>{"0:0 unreadable"});
  // A fault in every line is reported once.
  using Found = std::vector<std::string>;
  const auto all = [&](std::string text, char from, const std::string& to) {
    for (std::size_t at = 0; (at = text.find(from, at)) != text.npos; at += to.size()) {
      text.replace(at, 1, to);
    }
    return findingsIn(folder.with(kHistory, text));
  };
  const std::size_t data = history.find("\n1,") + 1;
  const auto ofData = [&](char from, const char* to) {
    std::string lines = history.substr(data);
    for (std::size_t at = 0; (at = lines.find(from, at)) != lines.npos; at += std::strlen(to)) {
      lines.replace(at, 1, to);
    }
    return findingsIn(folder.with(kHistory, history.substr(0, data) + lines));
  };
  EXPECT_EQ(ofData('.', ","), Found{"22:0 decimal-comma"});
  EXPECT_EQ(ofData('\n', ",,\n"), Found{"22:28 extra-fields"});
  EXPECT_EQ(findingsIn(folder.with("x.csv", "Record,Time,Level\n1,14:30:00,25,61,50\n")),
            Found{"2:0 decimal-comma"});
  const std::string columns =
      test::contentOf(test::kData / "fixed-column-history/good/landing.spc");
  EXPECT_EQ(findingsIn(folder.with("x.spc", replaced(columns, " 61.50", " 61,50"))),
            Found{"21:4 decimal-comma"});
  std::string remarks = test::contentOf(kSamples / kMap);
  for (std::size_t at = remarks.find("\n1,"); (at = remarks.find('\n', at + 1)) != remarks.npos;) {
    remarks.insert(at, ",remark");
    at += 7;
  }
  EXPECT_EQ(findingsIn(folder.with(kMap, remarks)).size(), 60U);  // an extra field in every row
  EXPECT_EQ(all(history, '\n', "\r"), Found{"1:0 line-ends"});
  EXPECT_EQ(all(history, '\n', "\r\n"), Found());
  EXPECT_EQ(all(history, ',', ";"), Found{"1:0 spreadsheet"});
  std::string quoted;
  for (const std::string& line : test::linesOf(history)) {
    quoted += '"';
    for (const char c : line) quoted += c == ',' ? "\",\"" : std::string(1, c);
    quoted += "\"\n";
  }
  EXPECT_EQ(findingsIn(folder.with(kHistory, quoted)), Found{"1:0 quotes"});
}

TEST(Check, ACutLastLineAndDuplicateRecords) {
  using Found = std::vector<std::string>;
  const test::Folder folder;
  const std::string text = test::contentOf(kSamples / kHistory);
  const auto found = [&](const std::string& changed) {
    return findingsIn(folder.with(kHistory, changed));
  };
  EXPECT_EQ(found(text.substr(0, text.size() - 1)), Found{"81:27 cut-short"});
  EXPECT_EQ(found(text.substr(0, text.size() - 2) + "\n"), Found{"81:27 cut-short"});
  const auto recordAt = [&](int record) {
    return text.find("\n" + std::to_string(record) + ",14");
  };
  const auto levelsOf = [&](int record) {
    std::size_t at = recordAt(record) + 1;
    for (int i = 0; i < 3; ++i) at = text.find(',', at) + 1;
    return at;
  };
  const std::string levels =
      text.substr(levelsOf(30), text.find('\n', levelsOf(30)) - levelsOf(30));
  std::string stuck = text;
  for (const int record : {33, 32, 31}) {
    const std::size_t at = levelsOf(record);
    stuck.replace(at, text.find('\n', at) - at, levels);
  }
  EXPECT_EQ(found(stuck), Found{"52:0 record-stuck r31"});
  const std::string first = folder.with("a", text);
  const std::string second = folder.with("b", text);
  SameLevels same;
  Found pairs;
  for (const std::string& path : {first, second, first}) {
    const Checked checked = checkWithHistory(path, [](const Finding&) {});
    same.see(path, checked, [&](const Finding& finding) { pairs.push_back(shortForm(finding)); });
  }
  EXPECT_EQ(pairs, Found{"0:0 same-levels"});
}

TEST(Check, PositionsAndGeometry) {
  const test::Folder folder;
  for (const char* source :
       {"track.csv", "flight.dat", "flight.sth.csv", "flight.pth.csv", "flight.mic.csv"}) {
    static_cast<void>(folder.with(source, ""));
  }
  const auto changed = [&](const std::string& sample, const char* from, const char* to) {
    const std::string text = test::contentOf(test::kData / sample);
    return findingsIn(folder.with(sample.substr(sample.rfind('/') + 1), replaced(text, from, to)));
  };
  using Found = std::vector<std::string>;
  const char* const positions = "position-time-history/good/three-positions.csv";
  const char* const geometry = "geometric-time-history/good/two-points.csv";
  const char* const history = "spectral-time-history/good/three-records.csv";
  EXPECT_EQ(changed(history, "Bands**,17, 19", "Bands**,19,17").at(1), "24:4 extra-fields");
  EXPECT_EQ(changed(history, "Bands**,17, 19", "Bands**,18,18").at(2), "24:5 extra-fields");
  EXPECT_EQ(changed(positions, "NumberRecords**,3", "NumberRecords**,4"),
            Found{"8:2 record-count"});
  EXPECT_EQ(changed(positions, "10:00:00.2", "10:00:00.1"), Found{"15:1 time-order"});
  const std::string track = test::contentOf(test::kData / positions);
  const auto atRest = [&](int lines) {  // at 0, 0, 0 from the first line on
    std::string text = track.substr(0, track.find("10:00:00"));
    for (int i = 0; i < lines; ++i) text += "10:00:0" + std::to_string(i) + ",0,0,0\n";
    return findingsIn(folder.with("rest.csv", text));
  };
  EXPECT_EQ(atRest(4).back(), "8:2 record-count");
  EXPECT_EQ(atRest(5).back(), "14:0 position-stuck");
  EXPECT_EQ(changed(positions, "10:00:00.1", "23:59:59.9"), Found());  // across midnight
  EXPECT_EQ(changed(geometry, "2,10:00:05.5", "2,10:00:06"), Found{"21:2 time-step r2"});
  EXPECT_EQ(changed(geometry, "10:00:00.48", "10:00:01.48"), Found{"20:0 contradiction r1"});
  EXPECT_EQ(changed(geometry, "1545.4736", "1595.4736"), Found{"20:0 contradiction r1"});
  EXPECT_EQ(changed(geometry, "1545.4736", "15454.736"),
            (Found{"0:0 contradiction", "20:0 contradiction r1"}));  // 3,400 m/s
  EXPECT_EQ(changed(geometry, "17.83571,-0.1,0", "17.83571,-0.1"), Found{"21:10 cut-short"});
  EXPECT_EQ(changed(positions, "516.9\n", "516.9,7\n"), Found{"14:5 extra-fields"});
  EXPECT_EQ(changed(geometry, "NumberRecords**,2", "NumberRecords**,3"),
            Found{"15:2 record-count"});
  EXPECT_EQ(changed(geometry, "\n2,10", ",1,2\n2,10"), Found{"20:12 extra-fields"});
  std::vector<std::string> rejected;
  checkFixes((test::kData / "tracking/good/four-positions.csv").string(), 1,
             [&](const Finding& finding) { rejected.push_back(shortForm(finding)); });
  EXPECT_EQ(rejected, (Found{"7:2 fix-rejected", "10:2 fix-rejected"}));
  EXPECT_EQ(changed(geometry, "\n2,10", "\n3,10"),
            (Found{"21:1 record-gap r3", "21:2 time-step r3"}));
}

/// Even if records lack different bands, a level is compared with levels of its own band.
TEST(Check, GapsBetweenBandsAreNoJumps) {
  const test::Folder folder;
  std::string text = test::contentOf(test::kData / "fixed-column-history/good/landing.spc");
  const std::size_t records = text.find(" 61.50");
  const std::string odd = "   60.00           90.00   60.00";
  const std::string even = "   60.00   60.00           60.00";
  std::size_t line = text.rfind('\n', records) + 1;
  for (const std::string& levels : {odd, even, odd}) {
    text.replace(line + 32, odd.size(), levels);
    line = text.find('\n', line) + 1;
  }
  EXPECT_EQ(findingsIn(folder.with("x.spc", text)), std::vector<std::string>());
}

TEST(Check, LongRecordsHaveNoJumps) {
  const test::Folder folder;
  AQ_DataSTH source;
  Content<AQ_HeaderSTH, AQ_SpectralTimeHistory> read;
  static_cast<void>(readContent(source, (kSamples / kHistory).string(), read));
  read.model->spectrum(2)->SPL(21, 2.91);
  for (const double length : {0.5, 30.0}) {
    AQ_Time start;
    for (const auto& [record, spectrum] : *read.model)
      spectrum->Time()->TODseconds(record * length);
    read.model->ReferenceTime(std::make_shared<AQ_Time>(start));
    for (const auto& [record, spectrum] : *read.model) spectrum->Time()->setRelTime(start);
    AQ_DataSPC file;
    file.setHeader(read.header);
    file.RecordLength(length);
    ASSERT_EQ(file.writeFile(folder.file("x.spc"), *read.model), AQ_DATA_OK);
    const auto found = findingsIn(folder.file("x.spc"));
    EXPECT_EQ(found.size(), length < 1 ? 1U : 0U) << length;
  }
}

const char* const kTrack = "fly-over.tspi.csv";
const char* const kPositions = "fly-over.pth.csv";
const char* const kGeometry = "fly-over.gth.csv";

/// Fills a folder with the sample's history, microphone and tracking file, and with the positions
/// and the geometry made from them.
void makeFlight(const test::Folder& folder) {
  for (const std::string& name : {kHistory, std::string("fly-over.mic.csv"), std::string(kTrack)}) {
    static_cast<void>(folder.with(name, test::contentOf(kSamples / name)));
  }
  AQ_DataTSPI tracking;
  Content<void, AQ_PositionTimeHistory> track;
  static_cast<void>(readContent(tracking, folder.file(kTrack), track));
  const auto header = std::make_shared<AQ_HeaderPTH>();
  header->sTSPIFileName = folder.file(kTrack);
  AQ_DataPTH positions;
  static_cast<void>(writeFrom(positions, folder.file(kPositions), header, *track.model));
  AQ_DataSTH file;
  Content<AQ_HeaderSTH, AQ_SpectralTimeHistory> read;
  static_cast<void>(readContent(file, folder.file(kHistory), read));
  AQ_Position microphone;
  microphone.Z(1.2);
  const auto all = emissionGeometry(*track.model, microphone, *read.model, 20);
  AQ_GeometryTimeHistory points;
  for (const auto& [record, point] : *all) points.Point(points.Count() + 1, point);
  static_cast<void>(roundLateTimes(points));
  const auto made = std::make_shared<AQ_HeaderGTH>();
  made->MicrophoneID = read.header->sMicrophoneID;
  made->MicrophonePosition = std::make_shared<AQ_Position>(microphone);
  made->Temperature = 20;
  made->STHFileName = folder.file(kHistory);
  made->PTHFileName = folder.file(kPositions);
  made->MICFileName = folder.file("fly-over.mic.csv");
  AQ_DataGTH geometry;
  static_cast<void>(writeFrom(geometry, folder.file(kGeometry), made, points));
}

TEST(Check, PositionsAndGeometryAgainstTheirSources) {
  const test::Folder folder;
  makeFlight(folder);
  const auto foundIn = [&](const std::string& name) {
    std::vector<std::string> found;
    checkWithHistory(folder.file(name),
                     [&](const Finding& finding) { found.push_back(shortForm(finding)); });
    return found;
  };
  const auto changed = [&](const std::string& name, const char* from, const char* to,
                           const std::string& checked) {
    const std::string text = test::contentOf(folder.file(name));
    static_cast<void>(folder.with(name, replaced(text, from, to)));
    const auto found = foundIn(checked);
    static_cast<void>(folder.with(name, text));
    return found;
  };
  using Found = std::vector<std::string>;
  EXPECT_EQ(foundIn(kPositions), Found());
  EXPECT_EQ(foundIn(kGeometry), Found());
  const std::string positions = test::contentOf(folder.file(kPositions));
  const std::size_t jump = test::linesOf(positions.substr(0, positions.find(",-1037,"))).size();
  EXPECT_EQ(changed(kPositions, ",-1037,", ",-37,", kPositions),
            Found{std::to_string(jump) + ":0 position-jump"});
  EXPECT_EQ(changed(kPositions, "TOD,X,Y", "TOD,Y,X", kPositions), Found{"11:2 heading"});
  EXPECT_EQ(changed(kHistory, "MicrophoneID**,M1", "MicrophoneID**,M2", kGeometry),
            Found{"6:2 source-misfit"});
  EXPECT_EQ(changed("fly-over.mic.csv", "\n0,0,0", "\n5,0,0", kGeometry),
            Found{"7:2 source-misfit"});
  EXPECT_EQ(changed(kGeometry, "Temperature**,20", "Temperature**,200", kGeometry),
            Found{"8:2 contradiction"});
  EXPECT_EQ(changed(kGeometry, "Temperature**,20", "Temperature**,68", kGeometry),
            Found());  // degrees Fahrenheit
  EXPECT_EQ(changed(kGeometry, "Xe, Ye", "Ye, Xe", kGeometry), Found{"18:5 heading"});
  const std::string points = test::contentOf(folder.file(kGeometry));
  std::size_t range = points.find("\n9,");
  for (int field = 0; field < 7; ++field) range = points.find(',', range + 1);
  const std::string head = points.substr(0, range);
  static_cast<void>(folder.with(kGeometry, head + ",9" + points.substr(range + 1)));
  EXPECT_EQ(foundIn(kGeometry),
            Found{std::to_string(test::linesOf(head).size()) + ":0 contradiction r9"});
  static_cast<void>(folder.with(kGeometry, points));
  const auto later = [&](const std::string& name, const std::string& checked) {
    std::string text = test::contentOf(folder.file(name));
    const std::string before = text;
    for (std::size_t at = 0; (at = text.find("14:30:", at)) != text.npos; at += 6) {
      text.replace(at, 6, "15:30:");
    }
    static_cast<void>(folder.with(name, text));
    const auto found = foundIn(checked);
    static_cast<void>(folder.with(name, before));
    return found;
  };
  EXPECT_EQ(later(kHistory, kGeometry), Found{"9:2 source-misfit"});
  EXPECT_EQ(later(kPositions, kGeometry), Found{"11:2 source-misfit"});
  EXPECT_EQ(later(kTrack, kPositions), Found{"6:2 source-misfit"});
  const std::string track = test::contentOf(folder.file(kTrack));
  const std::size_t headings = track.find("Time,");
  static_cast<void>(folder.with(
      kTrack, track.substr(0, headings) + track.substr(track.find('\n', headings) + 1)));
  EXPECT_EQ(foundIn(kTrack).front(), "6:0 heading");
  const std::size_t gap = track.find("14:30:10");
  static_cast<void>(
      folder.with(kTrack, track.substr(0, gap) + track.substr(track.find("14:30:15"))));
  EXPECT_EQ(foundIn(kTrack).at(1), "57:1 time-gap");
}

TEST(Check, AMapThatDoesNotFitItsHistory) {
  const test::Folder folder;
  const std::string map =
      folder.with(kMap, replaced(test::contentOf(kSamples / kMap), "fly-over.sth.csv", "history"));
  const std::string text = test::contentOf(kSamples / kHistory);
  const auto misfits = [&](const std::string& history) {
    std::vector<std::string> found;
    static_cast<void>(folder.with("history", history));
    checkWithHistory(map, [&](const Finding& finding) { found.push_back(shortForm(finding)); });
    return found;
  };
  using Found = std::vector<std::string>;
  EXPECT_EQ(misfits(text), Found());
  Found fit;
  checkFit(folder.with("history", replaced(text, "\n60,", "\n61,")), map,
           [&](const Finding& finding) { fit.push_back(shortForm(finding)); });
  EXPECT_EQ(fit, Found{"0:0 map-misfit r60"});
  EXPECT_EQ(misfits(replaced(text, "\n60,", "\n61,")), Found{"0:0 map-misfit r60"});
  EXPECT_EQ(misfits(text.substr(0, text.find("\n60,") + 1)),
            (Found{"0:0 map-misfit", "0:0 map-misfit r60"}));
  EXPECT_EQ(misfits(replaced(text, "Bands**,17", "Bands**,18")).size(), 60U);
  std::string many = text;
  const std::string row = text.substr(text.find("\n60,") + 3);
  for (int record = 61; record <= 32767; ++record) many += std::to_string(record) + row;
  many += "0" + row;
  EXPECT_EQ(misfits(many), Found{"0:0 unreadable"});  // one record more than can be counted
  AQ_DataSTH source;
  Content<AQ_HeaderSTH, AQ_SpectralTimeHistory> read;
  static_cast<void>(readContent(source, folder.with("history", text), read));
  AQ_DataSPC columns;
  columns.NumberLastRecord(59);
  ASSERT_EQ(columns.writeFile(folder.file("history"), *read.model), AQ_DATA_OK);
  EXPECT_EQ(misfits(test::contentOf(folder.file("history"))),
            (Found{"0:0 map-misfit", "0:0 map-misfit r60"}));
  AQ_MaskMap rows;
  rows.Row(1, nullptr);
  EXPECT_ERROR(checkFit(*read.model, "history", rows, [](const Finding&) {}), ObjectNotSet);
}

TEST(Check, KindsHaveUniqueNames) {
  std::set<std::string_view> names;
  for (const FindingKind& kind : findingKinds()) names.insert(kind.name);
  EXPECT_EQ(names.size(), findingKinds().size());
}

}  // namespace
}  // namespace aq
