#include "aq/check/header_check.h"

#include <algorithm>
#include <utility>

#include "aq/check/text_form.h"
#include "aq/core/band_label.h"
#include "aq/core/error.h"
#include "aq/core/platform.h"
#include "aq/text/checked_keywords.h"
#include "aq/text/fields.h"
#include "aq/text/number_text.h"

namespace aq {
namespace {

/// The expected labels; empty if a band has no label.
std::string expectedLabels(std::int16_t low, std::int16_t high) {
  try {
    std::string labels;
    appendBandLabels(labels, low, high);
    return labels;
  } catch (const Error&) {
    return {};
  }
}

bool isPlainNumber(std::string_view text) {
  text = trimmed(text);
  if (text.starts_with('-')) text.remove_prefix(1);
  return !text.empty() && text.find_first_not_of("0123456789") == text.npos;
}

/// The file name that a header records, without its folders, whether separated by "/" or "\".
std::string bareName(std::string_view name) {
  return std::string(name.substr(name.find_last_of("/\\") + 1));
}

/// The path of a file `name` in the folder of `path`.
std::string beside(const std::string& path, const std::string& name) {
  return path.substr(0, path.size() - platform::fileName(path).size()) + name;
}

bool isBeside(const std::string& path, const std::string& name) {
  return platform::lastChanged(beside(path, name)).has_value();
}

constexpr std::string_view kOwnName = "FileName";
/// The keywords that name source files.
constexpr std::string_view kSources[] = {"GenerationFile", "TSPIFileName", "STHFileName",
                                         "PTHFileName", "MICFileName"};

}  // namespace

std::string sourceBeside(const std::string& path, std::string_view recorded) {
  const std::string name = bareName(recorded);
  if (name.empty()) return {};
  std::string source = beside(path, name);
  return platform::isFile(source) ? source : std::string();
}

void checkFileName(std::size_t line, std::string_view name, const std::string& path,
                   const Reporter& report) {
  const std::string recorded = bareName(name);
  if (recorded.empty() || upperCased(recorded) == upperCased(platform::fileName(path))) return;
  const bool others = isBeside(path, recorded);
  report(others ? Kind::FileName : Kind::Renamed, {.line = line, .field = 2},
         others ? shown(recorded) + " is another file in this folder"
                : "the header calls the file " + shown(recorded));
}

void checkFieldsAfterValue(const HeaderLine& line, const Reporter& report) {
  if (line.fields == 0) return;
  const std::size_t before = line.use == HeaderLine::Use::Keyword ? 1 : 0;
  std::vector<std::string_view> found;
  split(line.value, ",", found);
  for (std::size_t i = line.fields; i < found.size(); ++i) {
    if (trimmed(found[i]).empty()) continue;
    const bool comma = line.fields != 2 && i == line.fields && isPlainNumber(found[i - 1]) &&
                       isPlainNumber(found[i]);
    if (comma) {
      return report(Kind::DecimalComma, {.line = line.number, .field = before + i + 1},
                    shown(trimmed(line.value)) + ": " + std::string(kDecimalCommaCure));
    }
    return report(Kind::LostText, {.line = line.number, .field = before + i + 1},
                  shown(found[i]) + " after the value is ignored");
  }
}

void checkWord(std::size_t line, std::string_view word, std::string_view readAs,
               const Reporter& report) {
  if (upperCased(word) == readAs) return;
  report(Kind::OtherWord, {.line = line, .field = 2},
         shown(word) + " is unknown, so it is read as " + shown(readAs));
}

std::size_t HeaderCheck::lineOf(std::string_view keyword) const {
  const auto entry = entries_.find(keyword);
  return entry == entries_.end() ? 0 : entry->second.line;
}

std::string_view HeaderCheck::valueOf(std::string_view keyword) const {
  const auto entry = entries_.find(keyword);
  return entry == entries_.end() ? std::string_view() : entry->second.value;
}

std::pair<std::int16_t, std::int16_t> HeaderCheck::integersOf(std::string_view keyword) const {
  FieldReader fields(valueOf(keyword), lineOf(keyword));
  const std::int16_t first = fields.int16("an integer");
  return {first, fields.int16("an integer")};
}

void HeaderCheck::expectCount(std::string_view keyword, std::size_t count,
                              const char* ofWhat) const {
  const std::string_view text = valueOf(keyword);
  if (text.empty() || int32From(text) == static_cast<std::int64_t>(count)) return;
  report_(Kind::RecordCount, {.line = lineOf(keyword), .field = 2},
          "the header counts " + std::string(text) + ' ' + ofWhat + ", but the file has " +
              std::to_string(count));
}

void HeaderCheck::expectWord(std::string_view keyword, const std::string& readAs) const {
  checkWord(lineOf(keyword), valueOf(keyword), readAs, report_);
}

void HeaderCheck::expectReferenceType() const {
  if (words_.referenceType()) return;
  report_(Kind::OtherWord, {.line = lineOf(keywords::kReferenceTimeType), .field = 2},
          shown(words_.reference()) +
              " is unknown; expected START, OVERHEAD, AMAX, PMAX, TMAX, OAMAX, HACK or OTHER");
}

void HeaderCheck::expectFiles(const std::string& path) const {
  checkFileName(lineOf(kOwnName), valueOf(kOwnName), path, report_);
  for (const std::string_view keyword : kSources) {
    const std::string name = bareName(valueOf(keyword));
    if (name.empty() || isBeside(path, name)) continue;
    report_(Kind::SourceMissing, {.line = lineOf(keyword), .field = 2},
            shown(name) + " is not in this folder");
  }
}

void HeaderCheck::expectHeadings(std::string_view headings) const {
  std::vector<std::string_view> expected;
  std::vector<std::string_view> found;
  split(headings, ",", expected);
  split(headings_, ",", found);
  for (std::size_t i = 0; i < expected.size(); ++i) {
    const std::string_view heading = i < found.size() ? trimmed(found[i]) : std::string_view();
    if (upperCased(heading) == upperCased(trimmed(expected[i]))) continue;
    return report_(
        Kind::Heading, {.line = lines_, .field = i + 1},
        "expected the heading " + shown(trimmed(expected[i])) + ", found " + shown(heading));
  }
}

void HeaderCheck::expectLabels(std::size_t first, std::int16_t low, std::int16_t high) const {
  const std::string labels = expectedLabels(low, high);
  if (labels.empty()) return;
  FieldReader found(headings_, lines_);
  std::vector<std::string_view> expected;
  split(labels, ",", expected);
  try {
    found.skip(static_cast<int>(first) - 1, "a heading");
    for (std::size_t i = 0; i < expected.size(); ++i) {
      const std::string_view heading = found.text("a heading");
      if (heading == expected[i]) continue;
      report_(Kind::Heading, {.line = lines_, .field = first + i},
              "expected the heading " + shown(expected[i]) + ", found " + shown(heading));
      return;
    }
  } catch (const ReadFailure& failed) {
    report_(Kind::Heading, {.line = lines_},
            "expected " + std::to_string(first - 1 + expected.size()) + " headings, found " +
                std::to_string(failed.failure.field - 1));
  }
}

void HeaderCheck::see(const HeaderLine& line) {
  lines_ = line.number;
  words_.see(line);
  if (line.use == HeaderLine::Use::Headings) headings_ = line.text;
  std::vector<std::string_view> pieces;
  split(line.text, kKeywordMark, pieces);
  if (line.use == HeaderLine::Use::Keyword) {
    entries_.emplace(line.keyword, Entry{line.number, std::string(line.value)});
    seeKeyword(line, trimmed(pieces.front()));
    checkFieldsAfterValue(line, report_);
  }
  if (line.use != HeaderLine::Use::Headings) seeMarks(line, pieces);
}

void HeaderCheck::seeKeyword(const HeaderLine& line, std::string_view found) {
  if (line.number == 1 && found.starts_with(kByteOrderMark)) {
    found.remove_prefix(kByteOrderMark.size());  // reported separately
  }
  if (found.starts_with('"')) {
    found.remove_prefix(1);
    if (std::exchange(quotes_, line.number) == 0) {
      report_(Kind::Quotes, {.line = line.number}, "header lines are in quotes");
    }
  }
  if (upperCased(found) == upperCased(line.keyword)) return;
  report_(
      Kind::Keyword, {.line = line.number, .field = 1},
      "this line is read as " + std::string(line.keyword) + ", but its keyword is " + shown(found));
}

/// Reports text that readers skip. A keyword's value starts after "**," and ends at the next "**";
/// any other line ends at its first "**".
void HeaderCheck::seeMarks(const HeaderLine& line,
                           const std::vector<std::string_view>& pieces) const {
  const bool keyword = line.use == HeaderLine::Use::Keyword;
  const auto lost = [&](std::string_view text, const char* where) {
    report_(Kind::LostText, {.line = line.number}, shown(text) + where + " is ignored");
  };
  const std::string_view after = pieces.size() > 1 ? pieces[1] : std::string_view();
  const std::string_view value = after.substr(std::min(after.find_first_not_of('"'), after.size()));
  if (keyword && !value.empty() && value.front() != ',') {
    lost(value.substr(0, 1), " in place of a comma");
  }
  const std::size_t read = keyword ? 2 : 1;
  if (pieces.size() > read) lost(pieces[read], " after \"**\"");
}

}  // namespace aq
