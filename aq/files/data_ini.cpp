#include "aq/files/data_ini.h"

#include <optional>
#include <string_view>

#include "aq/core/words.h"
#include "aq/text/checked_keywords.h"
#include "aq/text/date_text.h"
#include "aq/text/fields.h"
#include "aq/text/header_writer.h"
#include "aq/text/number_text.h"

namespace aq {
namespace {

constexpr std::string_view kFileName = "FileName";
constexpr std::string_view kFileDateTime = "FileDateTime";
constexpr std::string_view kComments = "NumberOfCommentLines";

/// One parameter: its keyword, the kind of value that it expects, a function that returns its text
/// (nothing if it is not set), and one that sets it from text.
struct Parameter {
  std::string_view keyword;
  const char* expected;
  std::optional<std::string> (*text)(const AQ_DataINI&);
  void (*set)(AQ_DataINI&, std::string_view);
};

template <class Number>
std::optional<std::string> textUnlessZero(Number value) {
  if (value == 0) return std::nullopt;
  return numberText(value);
}

/// The word of an enumeration member; nothing if it is `notSet`.
template <class Enumeration>
std::optional<std::string> wordUnless(Enumeration notSet, Enumeration value) {
  if (value == notSet) return std::nullopt;
  return std::string(wordOf(value));
}

/// An unknown word gives the enumeration's first member, as in a new history.
template <class Enumeration>
Enumeration valueOf(std::string_view word) {
  Enumeration value{};
  setByWord(value, word);
  return value;
}

using Text = std::string_view;
const Parameter kParameters[] = {
    {"CalAdj", "a number", [](const AQ_DataINI& p) { return textUnlessZero(p.CalAdj()); },
     [](AQ_DataINI& p, Text text) { p.CalAdj(singleFrom(text)); }},
    {keywords::kNuAvg, "an averaging method",
     [](const AQ_DataINI& p) { return wordUnless(AQ_NA, p.NuAvg()); },
     [](AQ_DataINI& p, Text text) { p.NuAvg(valueOf<AQ_AverageMethod>(text)); }},
    {keywords::kNuTimg, "a time stamp type",
     [](const AQ_DataINI& p) { return wordUnless(AQ_DataINI::kTimingNotSet, p.NuTimg()); },
     [](AQ_DataINI& p, Text text) { p.NuTimg(valueOf<AQ_TimeStampType>(text)); }},
    {"PrWndo", "a number", [](const AQ_DataINI& p) { return textUnlessZero(p.PrWndo()); },
     [](AQ_DataINI& p, Text text) { p.PrWndo(singleFrom(text)); }},
    {"PoWndo", "a number", [](const AQ_DataINI& p) { return textUnlessZero(p.PoWndo()); },
     [](AQ_DataINI& p, Text text) { p.PoWndo(singleFrom(text)); }},
    {"LoRec", "an integer",
     [](const AQ_DataINI& p) { return textUnlessZero(std::int32_t{p.LoRec()}); },
     [](AQ_DataINI& p, Text text) { p.LoRec(int16From(text)); }},
    {"HiRec", "an integer",
     [](const AQ_DataINI& p) { return textUnlessZero(std::int32_t{p.HiRec()}); },
     [](AQ_DataINI& p, Text text) { p.HiRec(int16From(text)); }},
};

/// The keyword that matches `upperCase`; empty if there is none.
std::string_view keywordOf(std::string_view upperCase) {
  for (const std::string_view keyword : {kFileName, kFileDateTime, kComments}) {
    if (upperCase == upperCased(keyword)) return keyword;
  }
  for (const Parameter& parameter : kParameters) {
    if (upperCase == upperCased(parameter.keyword)) return parameter.keyword;
  }
  return {};
}

/// Reads `count` comment lines, each up to its first comma; drops empty ones.
void readComments(std::int16_t count, LineReader& lines, const HeaderObserver& watch,
                  Collection<std::string>& comments) {
  for (std::int32_t i = 1; i <= count; ++i) {
    takeLine(lines, "one more comment line");
    showLine(watch, {lines.number(), HeaderLine::Use::Text, {}, lines.line(), lines.line(), 1});
    FieldReader fields(lines);
    const std::string_view comment = fields.text("a comment");
    if (!comment.empty()) comments.Add(std::string(comment));
  }
}

void readDateTime(FieldReader& fields, AQ_Time& time) {
  time.CurrentDate(
      fields.convert("a date mm/dd/yyyy", [](std::string_view text) { return dateFrom(text); }));
  time.TODstring(fields.convert("a time hh:mm:ss", clockTimeFrom));
}

/// Reads a line, and the comment lines after it if it gives their number. Ignores the case of
/// keywords; skips unknown keywords and lines without a keyword.
void readLine(LineReader& lines, const HeaderObserver& watch, AQ_DataINI& parameters) {
  FieldReader fields(lines);
  const std::string_view key = keywordOf(upperCased(keywordIn(fields.text("a keyword"))));
  const auto use = key.empty() ? HeaderLine::Use::Unused : HeaderLine::Use::Keyword;
  const std::size_t read = key == kFileDateTime ? 2 : 1;
  showLine(watch, {lines.number(), use, key, lines.line(), fields.rest(), read});
  if (key == kFileName) parameters.FileName(std::string(fields.text("a file name")));
  if (key == kFileDateTime) readDateTime(fields, *parameters.FileDate());
  if (key == kComments) {
    readComments(fields.int16("an integer"), lines, watch, *parameters.Comments());
  }
  for (const Parameter& parameter : kParameters) {
    if (key != parameter.keyword) continue;
    fields.convert(parameter.expected, [&](Text text) { parameter.set(parameters, text); });
  }
}

}  // namespace

AQ_DataMessage AQ_DataINI::writeFile(const std::string& sFileName) {
  return writing(sFileName, [&](const std::string& name) {
    fileName_ = name;
    std::string text;
    HeaderWriter lines(text, fileInformation());
    lines.title(AQ_DataINI::kTitle);
    lines.recordedName(kFileName, fileName_);
    lines.currentDateTime(kFileDateTime, FileDate());
    lines.lines(kComments, Comments());
    for (const Parameter& parameter : kParameters) {
      const auto value = parameter.text(*this);
      if (value) lines.textAfterBlank(parameter.keyword, *value);
    }
    return text;
  });
}

AQ_DataMessage AQ_DataINI::readFile(const std::string& sFileName) {
  return reading(sFileName, [&](const std::string& name) {
    LineReader lines(name);
    bool more = lines.next();
    averaging_ = AQ_NA;
    timing_ = kTimingNotSet;
    for (; more; more = lines.next()) readLine(lines, headerObserver(), *this);
  });
}

}  // namespace aq
