#include <aq/files/data_ascii.h>
#include <gtest/gtest.h>

#include <algorithm>

#include "tests/support/errors.h"
#include "tests/support/files.h"

namespace aq {
namespace {

using Strings = std::vector<std::string>;

Strings valuesOf(const Collection<std::string>& collection) {
  return {collection.begin(), collection.end()};
}

TEST(DataASCII, LinesEndWithLfOrCrlf) {
  const test::Folder folder;
  const std::string longLine(200000, 'x');
  const std::pair<std::string, Strings> rows[] = {
      {"", {}},
      {"\n", {""}},
      {"a\r\nb\nc", {"a", "b", "c"}},
      {"a\rb\r", {"a\rb\r"}},
      {"\r\n\r\n", {"", ""}},
      {std::string("\0\xFF\t \n", 5), {std::string("\0\xFF\t ", 4)}},
      {longLine + "\r\n" + longLine + longLine + "\nend", {longLine, longLine + longLine, "end"}}};
  AQ_DataASCII file;
  for (const auto& [bytes, lines] : rows) {
    EXPECT_EQ(file.readLines(folder.with("in", bytes)), AQ_DATA_OK);
    EXPECT_EQ(valuesOf(*file.Lines()), lines);
  }
}

TEST(DataASCII, EveryBlockBoundaryReadsTheSame) {
  const test::Folder folder;
  const Strings lines{"a", "", "bc", std::string(70, 'd')};
  AQ_DataASCII file;
  for (const std::size_t block : {65536U, 131072U}) {
    for (std::size_t ahead = block - 80; ahead <= block + 3; ++ahead) {
      const std::string first(ahead, 'x');
      // After consuming the empty line, the reader moves the rest down by one byte and reads on.
      std::string bytes = '\n' + first + "\r\n";
      for (const std::string& line : lines) bytes += line + "\r\n";
      ASSERT_EQ(file.readLines(folder.with("in", bytes)), AQ_DATA_OK);
      Strings expected{"", first};
      expected.insert(expected.end(), lines.begin(), lines.end());
      ASSERT_EQ(valuesOf(*file.Lines()), expected) << ahead;
    }
  }
}

struct Division {
  const char* delimiter;
  bool quoted;
  const char* line;
  Strings fields;
};

TEST(DataASCII, DividesLines) {
  const Division rows[] = {
      {",", false, "a,,b", {"a", "", "b"}},
      {",", false, "1, \"a\",b", {"1", "a", "b"}},
      {",", false, "   ", {""}},
      {",", false, " a , b ,", {"a", "b", ""}},
      {",", false, "\"x, y\",2", {"x", "y", "2"}},
      {",", false, "a|b", {"a|b"}},
      {",", true, "\"x, y\",2", {"x, y", "2"}},
      {",", true, "1,\"x,y\",\"p,q\"", {"1", "x,y", "p,q"}},
      {",", true, "1,\"x,y", {"1", "x", "y"}},      // a quote that is never closed
      {",", true, "a\"b,c\",d", {"ab", "c", "d"}},  // a quote inside a field is only removed
      {",", true, "\"\",\"a\"\"b,\"", {"", "ab,"}},
      {",", true, "a|b", {"a,b"}},
      {",", true, "\"", {""}},
      {"**", false, "Bands**,17, 40**x", {"Bands", ",17, 40", "x"}},
      {"**", false, "a*\"*b", {"a**b"}},  // a line is divided before quotes are removed
      {" ", false, "  a   b  ", {"a", "b"}},
      {" ", false, "   ", {}},
      {" ", true, "\"a b\"", {"\"a", "b\""}},
      {"", false, "a,b", {"a,b"}},
      {";;", true, "\"x;;y\";;z", {"x;;y", "z"}}};
  const test::Folder folder;
  for (const Division& row : rows) {
    AQ_DataASCII file;
    file.Delimiter(row.delimiter);
    file.CommentFields(row.quoted);
    ASSERT_EQ(file.readFields(folder.with("in", row.line + std::string("\n"))), AQ_DATA_OK);
    EXPECT_EQ(valuesOf(*file.Fields()->Item(1)), row.fields) << row.line;
  }
}

TEST(DataASCII, QuotedFieldsKeepTheDelimiterOfTheCall) {
  const test::Folder folder;
  AQ_DataASCII file;
  file.CommentFields(true);
  file.Delimiter(";");
  file.readFields(folder.with("in", "1,\"x;y\",2;3\n"));
  EXPECT_EQ(valuesOf(*file.Fields()->Item(1)), (Strings{"1,x;y,2", "3"}));
}

TEST(DataASCII, WritesAndAppends) {
  const test::Folder folder;
  const std::string path = folder.file("out");
  AQ_DataASCII file;
  file.Lines()->Add("one");
  file.Lines()->Add("");
  EXPECT_EQ(file.appendLines(path), AQ_DATA_OK);
  EXPECT_EQ(file.appendLines(path), AQ_DATA_OK);
  EXPECT_EQ(test::contentOf(path), "one\n\none\n\n");
  EXPECT_EQ(file.writeLines(path), AQ_DATA_OK);
  EXPECT_EQ(test::contentOf(path), "one\n\n");
  const auto fields = std::make_shared<Collection<std::string>>();
  for (const char* field : {"a", "", "b c"}) fields->Add(field);
  const auto rows = std::make_shared<AQ_DataASCII::FieldLines>();
  rows->Add(fields);
  file.Fields(rows);
  file.CommentFields(true);
  EXPECT_EQ(file.writeFields(path), AQ_DATA_OK);
  EXPECT_EQ(file.appendFields(path), AQ_DATA_OK);
  EXPECT_EQ(test::contentOf(path), "a,,b c\n\"a\",\"\",\"b c\"\n");
  EXPECT_EQ(file.readFields(path), AQ_DATA_OK);
  EXPECT_EQ(valuesOf(*file.Fields()->Item(2)), (Strings{"a", "", "b c"}));
}

TEST(DataASCII, FailuresSayWhy) {
  const test::Folder folder;
  AQ_DataASCII file;
  file.Lines()->Add("kept");
  EXPECT_EQ(file.readLines(folder.file("none")), AQ_DATA_FILE_ERROR);
  EXPECT_EQ(file.lastFailure()->found, "No such file or directory");
  EXPECT_EQ(file.lastFailure()->line, 0U);
  EXPECT_EQ(file.Lines()->Count(), 1);
  EXPECT_EQ(file.readFields(folder.file("")), AQ_DATA_FILE_ERROR);
  EXPECT_EQ(file.lastFailure()->message(), "cannot read " + folder.file("") + ": Is a directory");
  EXPECT_EQ(file.writeLines(folder.file("")), AQ_DATA_FILE_ERROR);
  EXPECT_EQ(file.writeLines("/dev/full"), AQ_DATA_FILE_ERROR);
  EXPECT_EQ(file.readLines(std::string("a\0b", 3)), AQ_DATA_FILE_ERROR);
  EXPECT_EQ(file.readLines(folder.with("good", "x")), AQ_DATA_OK);
  EXPECT_FALSE(file.lastFailure());
  file.Lines(nullptr);
  EXPECT_ERROR(file.writeLines(folder.file("x")), ObjectNotSet);
  EXPECT_FALSE(file.lastFailure());
  EXPECT_FALSE(std::filesystem::exists(folder.file("x")));
}

}  // namespace
}  // namespace aq
