#include <aq/check/mend_text.h>
#include <gtest/gtest.h>

#include <regex>

namespace aq {
namespace {

const std::string kPlain =
    "FileType**,Spectral Time-History\nFileName**,a.sth.csv\nFileDateTime**,03/15/2026,09:00:00\n"
    "ProjectName**,Sun, sea\nReferenceTime**,14:30:01.5\nBands**,17, 18\nGeneratedBy**,\n"
    "NumberOfCommentLines**,2\n\"quoted\"\n\nRec#,TOD,RelTime,B17/50Hz,B18/63Hz\n"
    "1,14:30:00.25,-1.25,61.51,.50\n2,14:30:01,-.5,-1.25,62.00\n";

std::string replaced(const std::string& text, const char* pattern, const char* by) {
  return std::regex_replace(text, std::regex(pattern), by);
}

std::string wide(const std::string& text, bool highFirst, const std::string& mark) {
  std::string bytes = mark;
  for (const char c : text) {
    bytes += highFirst ? std::string{'\0', c} : std::string{c, '\0'};
  }
  return bytes;
}

/// `kPlain` with the comment line that mending adds.
std::string commented(const std::string& done) {
  return replaced(replaced(kPlain, "Lines\\*\\*,2", "Lines**,3"), "Rec#",
                  ("Mended from a.csv: " + done + "\nRec#").c_str());
}

TEST(Mend, UndoesWhatIsCertain) {
  const std::string commas =
      replaced(replaced(kPlain, "(\\d*)\\.(\\d)", "$1,$2"), "a,sth", "a.sth");
  const std::string semicolons = replaced(
      replaced(replaced(kPlain, ",", ";"), "(\\d*)\\.(\\d)", "$1,$2"), "Sun; sea", "Sun, sea");
  const std::string filled = replaced(kPlain, "\n", ",,,\n");
  const std::pair<std::string, const char*> rows[] = {
      {"\xEF\xBB\xBF" + kPlain, "byte order mark"},
      {wide(kPlain, false, "\xFF\xFE"), "UTF-16"},
      {wide(kPlain, true, "\xFE\xFF"), "UTF-16"},
      {wide(kPlain, true, ""), "UTF-16"},
      {replaced(kPlain, "\n", "\r"), "carriage returns as line endings"},
      {replaced(replaced(kPlain, ",", "\t"), "Sun\t", "Sun,"), "tabs between fields"},
      {semicolons, "semicolons between fields"},
      {replaced(kPlain, "Sun, sea", "\"Sun, sea\""), "a spreadsheet's quotes"},
      {filled, "trailing commas"},
      {kPlain + "\n \n", "blank lines"},
      {kPlain + " ", "blank lines"},
      {replaced(kPlain, "\n2,", "\n\n2,"), "blank lines"},
      {commas, "decimal commas"},
      {"\xEF\xBB\xBF\xEF\xBB\xBF" + filled + "\n",
       "byte order mark, trailing commas, blank lines"}};
  for (const auto& [text, done] : rows) {
    const Mended mended = mendText(text, "a.csv");
    EXPECT_EQ(mended.text, commented(done));
    EXPECT_TRUE(mended.left.empty()) << done;
  }
  // In turn: a field that a spreadsheet quoted because of its semicolon; an unquoted one that it
  // would have quoted; a comment that looks like the line with the number of comments; a comment
  // that ends with a comma; a file that was cut short, whose end stays as it is; a file without a
  // reference time; and a line with a level of three decimals, which stays as it is.
  const std::pair<std::string, const char*> words[] = {
      {replaced(semicolons, "Sun, sea", "\"Sun; \"\"sea\"\"\""), "ProjectName**,Sun; \"sea\"\n"},
      {replaced(semicolons, "Sun, sea", "Sun; sea"), "ProjectName**,Sun; sea\n"},
      {replaced(filled, "\"quoted\"", "NumberOfCommentLines**,9"),
       "Lines**,3\nNumberOfCommentLines**,9\n"},
      {replaced(replaced(kPlain, "\n\n", "\na,\n"), "History\n", "History,,\n"), "\na,\nMended"},
      {filled.substr(0, filled.size() - 5), "62.0"},
      {replaced(commas, "14:30:01,5", ""), "\n2,14:30:01,-.5,-1.25,62.00\n"},
      {replaced(commas, "62,00", "62,000"), "61.51,.50\n2,14:30:01,-,5,-1,25,62,000\n"}};
  for (const auto& [text, kept] : words) {
    const Mended mended = mendText(text, "a.csv");
    EXPECT_NE(mended.text.find(kept), mended.text.npos) << mended.text;
    EXPECT_EQ(mended.left.size(), text.find("Sun; sea") == text.npos ? 0U : 1U) << kept;
    EXPECT_EQ(mended.text.ends_with('\n'), text.ends_with('\n'));
    EXPECT_TRUE(mendText(mended.text, "b.csv").done.empty()) << kept;
  }
  const std::string whole = replaced(replaced(kPlain, "14:30:01.5", "14:30:02"), "-\\.5", "-1");
  const std::string sums = replaced(whole, "-1\\.25,61", "-1.75,61");
  EXPECT_EQ(mendText(replaced(sums, "(\\d*)\\.(\\d)", "$1,$2"), "x").left,
            std::vector<std::string>());
  EXPECT_EQ(mendText(kPlain, "a.csv", {"gzip"}).text, commented("gzip"));
  const std::string full = replaced(kPlain, "\n\nRec", "\nb\nRec");
  const Mended doubled = mendText(replaced(full, "\n", "\n\n"), "a.csv");
  EXPECT_EQ(doubled.done, std::vector<std::string>{"blank lines"});
  EXPECT_EQ(replaced(doubled.text, "3\n\"quoted\"\nb\n.*\nRec", "2\n\"quoted\"\nb\nRec"), full);
  EXPECT_EQ(mendText(wide("FileType**,\xC3\xA9\n", false, "\xFF\xFE"), "x").text.size(), 16U);
  EXPECT_EQ(mendText(std::string("\xFF\xFE\xAC\x20\n\0", 6), "x").text, "\xE2\x82\xAC\n");
  const std::string wave("\xFF\xFE\x3D\xD8\x00\xDE\n\0", 8);  // a surrogate pair
  EXPECT_EQ(mendText(wave, "x").text, "\xF0\x9F\x98\x80\n");
}

TEST(Mend, LeavesWhatIsAmbiguous) {
  const std::string commas = replaced(kPlain, "(\\d*)\\.(\\d)", "$1,$2");
  const std::pair<std::string, const char*> rows[] = {
      {replaced(commas, "1,14:30:00,25,-1,25", "1,14:30:00,25,7"), "decimal commas"},
      {replaced(commas, "1,14:30:00,25", "1,99:30:00,25"), "decimal commas"},
      {replaced(kPlain, "Sun, sea", "\"\"\"Sun, sea\"\"\""), "quotes within quotes in line 4"},
      {replaced(kPlain, "Sun, sea", "Sun\rsea"), "carriage returns"},
      {std::string("\xFF\xFE\x41\0\x42", 5), "UTF-16"},
      {std::string("\xFF\xFE\x00\xDC", 4), "UTF-16"},
      {"PK\x03\x04", "zip"},
      {kPlain + std::string(1, '\0'), "not text"},
      {"\xEF\xBB\xBF\xFF\xFE" + kPlain, "not text"}};
  for (const auto& [text, left] : rows) {
    const Mended mended = mendText(text, "a.csv");
    EXPECT_EQ(mended.text, text);
    ASSERT_EQ(mended.left.size(), 1U) << left;
    EXPECT_NE(mended.left.front().find(left), std::string::npos) << mended.left.front();
  }
  const std::string bands = replaced(kPlain, "17, 18", "-2000000000,2000000000");
  for (const std::string& sound :
       {kPlain, replaced(kPlain, "\n", "\r\n"), kPlain + "\r", bands, std::string()}) {
    const Mended mended = mendText(sound, "a.csv");
    EXPECT_EQ(mended.text, sound);
    EXPECT_TRUE(mended.done.empty() && mended.left.empty());
  }
}

}  // namespace
}  // namespace aq
