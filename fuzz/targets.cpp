#include "fuzz/targets.h"

#include <aq/aq.h>
#include <aq/check/check_file.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <optional>

#include "tests/second/values.h"
#include "tests/support/files.h"
#include "tests/support/formats.h"

namespace aq::fuzz {
namespace {

/// The path of a file with this name in the temporary folder of this process.
std::string fileNamed(const char* name) {
  static const test::Folder folder;
  return folder.file(name);
}

std::string fileWith(std::string_view input) {
  static const std::string path = fileNamed("input");
  std::FILE* const file = std::fopen(path.c_str(), "wb");
  expect(file != nullptr, "a file for the input");
  expect(std::fwrite(input.data(), 1, input.size(), file) == input.size(), "room for the input");
  std::fclose(file);
  return path;
}

/// The highest line number that a message about the input may name.
std::size_t lineAfter(std::string_view input) {
  return static_cast<std::size_t>(std::count(input.begin(), input.end(), '\n')) + 2;
}

void readFormat(const Target& target, std::string_view input) {
  const std::string path = fileWith(input);
  const auto [failure, handedOut, sound] = test::kFormats.at(target.name).read(path);
  expect(sound, "a result that agrees with the objects returned");
  static_cast<void>(kindOfFile(path));
  if (!failure) return;
  // A recording is not text: its failures name a record and a byte.
  const std::size_t first = target.name == "analyzer-recording" ? 0 : 1;
  expect(failure->line >= first && failure->line <= lineAfter(input), "a failure with its place");
  expect(failure->message().find(failure->expected) != std::string::npos, "a message");
}

void checkAny(const Target&, std::string_view input) {
  checkFile(fileWith(input), [&](const Finding& finding) {
    expect(finding.place.line <= lineAfter(input) && !finding.message.empty(), "a finding");
  });
}

/// The lines of the input: a carriage return before a line feed belongs to the line ending, and the
/// last line needs no line ending.
std::vector<std::string> plainLines(std::string_view input) {
  std::vector<std::string> lines;
  while (!input.empty()) {
    const std::size_t end = input.find('\n');
    std::string line(input.substr(0, end));
    if (end != input.npos && line.ends_with('\r')) line.pop_back();
    lines.push_back(std::move(line));
    input.remove_prefix(end == input.npos ? input.size() : end + 1);
  }
  return lines;
}

bool sameFields(AQ_DataASCII& a, AQ_DataASCII& b) {
  return std::equal(a.Fields()->begin(), a.Fields()->end(), b.Fields()->begin(), b.Fields()->end(),
                    [](const auto& x, const auto& y) {
                      return std::equal(x->begin(), x->end(), y->begin(), y->end());
                    });
}

/// The last byte chooses the delimiter, and whether fields may be quoted.
void readDelimited(const Target&, std::string_view input) {
  constexpr std::array kDelimiters{",", " ", "", "|", "\t", "**"};
  const std::size_t choice = input.empty() ? 0U : static_cast<unsigned char>(input.back()) / 2U;
  const std::string delimiter = kDelimiters[choice % kDelimiters.size()];
  const bool quoted = !input.empty() && input.back() % 2 != 0;
  const std::string path = fileWith(input);
  AQ_DataASCII file;
  file.Delimiter(delimiter);
  file.CommentFields(quoted);
  expect(file.readLines(path) == AQ_DATA_OK && file.readFields(path) == AQ_DATA_OK, "any text");
  const auto lines = plainLines(input);
  expect(std::equal(lines.begin(), lines.end(), file.Lines()->begin(), file.Lines()->end()),
         "the lines of the text");
  expect(file.Fields()->Count() == file.Lines()->Count(), "fields for each line");
  if (quoted || delimiter.size() > 1 || input.find('\r') != input.npos) return;
  AQ_DataASCII again;
  again.Delimiter(delimiter);
  expect(file.writeFields(path) == AQ_DATA_OK && again.readFields(path) == AQ_DATA_OK, "a copy");
  expect(sameFields(file, again), "the fields that were written");
}

/// Whether a line holds values that a writer does not take from the object, such as names, dates
/// and counts.
bool isWritersOwn(std::string_view line) {
  const std::string_view key = line.substr(0, line.find(' '));
  return key.ends_with("Name") || key.ends_with("File") || key.ends_with("Date") ||
         key == "filename" || key == "filedatetime" || key == "columns" || key == "records" ||
         key == "rows" || key == "bands";
}

/// Whether a line has a parameter of 0, which is not written.
bool isUnwritten(std::string_view line) {
  constexpr std::array kParameters{"caladj", "prwndo", "powndo", "lorec", "hirec"};
  const bool zero = line.ends_with(" 0") || line.ends_with(" -0");
  return zero &&
         std::count(kParameters.begin(), kParameters.end(), line.substr(0, line.find(' '))) != 0;
}

/// Whether two lines of values are equal to the precision that a file keeps: within half a
/// hundredth plus a millionth of the value, for any number. Lines that the writer sets itself,
/// parameters of 0 and times just before a full second, which lose their fraction, may differ.
bool sameLine(const std::string& a, const std::string& b) {
  if (a == b || (isWritersOwn(a) && isWritersOwn(b))) return true;
  if (isUnwritten(a)) return true;
  const char* left = a.c_str();
  const char* right = b.c_str();
  while (*left != '\0' || *right != '\0') {
    char* leftEnd = nullptr;
    char* rightEnd = nullptr;
    const double one = std::strtod(left, &leftEnd);
    const double other = std::strtod(right, &rightEnd);
    if ((leftEnd == left) != (rightEnd == right)) return false;
    // 47.998 s is written as :47.
    const bool lateInSecond = other == std::floor(one) && one - other > 0.99;
    // 24:20:48 is written as 00:20:48.
    const double kept =
        one >= kSecondsPerDay && other < kSecondsPerDay ? one - kSecondsPerDay : one;
    if (std::abs(kept - other) > 0.00501 + 1e-6 * std::abs(one) && !lateInSecond) return false;
    if (leftEnd == left && *leftEnd++ != *rightEnd++) return false;
    left = leftEnd;
    right = rightEnd;
  }
  return true;
}

/// False if the file cannot be read, or if what was read cannot be written.
bool rewritten(const test::FormatCalls& format, const std::string& from, const std::string& to) {
  try {
    return format.rewrite(from, to) == AQ_DATA_OK;
  } catch (const Error&) {
    return false;
  }
}

void checkCopy(const test::FormatCalls& format, const std::string& path) {
  const std::string copy = fileNamed("copy");
  if (!rewritten(format, path, copy)) return;
  const auto before = test::linesOf(test::valuesOf(format.code, path));
  const auto after = test::linesOf(test::valuesOf(format.code, copy));
  expect(before.size() == after.size(), "as many values");
  for (std::size_t i = 0; i < before.size(); ++i) {
    expect(sameLine(before[i], after[i]),
           (format.code + ": " + before[i] + " written, not " + after[i]).c_str());
  }
  const std::string once = test::contentOf(copy);
  expect(rewritten(format, copy, copy) && test::contentOf(copy) == once, "the same file again");
}

void mendAny(const Target&, std::string_view input) {
  const Mended mended = mendText(input, "input");
  expect(!mended.done.empty() || mended.text == input, "the same text if nothing was mended");
  expect(mendText(mended.text, "mended").done.empty(), "mended text that needs no further mending");
}

/// One target per format, then the other targets.
std::vector<Target> allTargets() {
  std::vector<Target> all;
  for (const auto& [name, format] : test::kFormats) all.push_back({name, readFormat});
  all.insert(all.end(), {{"delimited-text", readDelimited},
                         {"check", checkAny},
                         {"mend", mendAny},
                         {"round-trip", roundTrip},
                         {"numbers", numbers},
                         {"model", model}});
  return all;
}

}  // namespace

std::span<const Target> targets() {
  static const std::vector<Target> all = allTargets();
  return all;
}

void run(std::string_view name, std::string_view input) {
  for (const Target& target : targets()) {
    if (target.name == name) return target.run(target, input);
  }
  expect(false, "a target");
}

void expect(bool holds, const char* what) {
  if (holds) return;
  std::fprintf(stderr, "expected %s\n", what);
  std::abort();
}

void roundTrip(const Target&, std::string_view input) {
  static const test::FixedInformation fixed;
  // A line read from "\r\r\n" ends in \r; once it is written, \r belongs to its line ending.
  if (input.find('\r') != input.npos) return;
  const std::string path = fileWith(input);
  for (const auto& [name, format] : test::kFormats) {
    if (format.rewrite) checkCopy(format, path);
  }
}

}  // namespace aq::fuzz
