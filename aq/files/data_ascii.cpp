#include "aq/files/data_ascii.h"

#include <algorithm>
#include <utility>

#include "aq/core/platform.h"
#include "aq/detail/pointers.h"
#include "aq/text/fields.h"
#include "aq/text/line_reader.h"
#include "aq/text/number_text.h"

namespace aq {
namespace {

constexpr char kQuote = '"';
constexpr char kPlaceholder = '|';
constexpr std::size_t kLongField = 64;  // longer than most fields

std::string replaced(std::string_view text, std::string_view from, std::string_view to) {
  std::string result;
  std::string_view between;
  forEachPiece(text, from, [&](std::string_view piece) {
    result += between;
    result += piece;
    between = to;
  });
  return result;
}

void divideAtSpaces(std::string_view line, Collection<std::string>& fields) {
  for (line = trimmed(line); !line.empty(); line = trimmed(line)) {
    const std::size_t size = std::min(line.find(' '), line.size());
    fields.Add(std::string(line.substr(0, size)));
    line.remove_prefix(size);
  }
}

}  // namespace

AQ_DataMessage AQ_DataASCII::readFields(const std::string& sFileName) {
  return reading(sFileName, [&](const std::string& name) {
    auto fields = std::make_shared<FieldLines>();
    LineReader lines(name);
    std::int32_t expected = 0;  // the number of fields in the previous line
    while (lines.next()) {
      auto line = divided(lines.line(), expected);
      expected = line->Count();
      fields->Add(std::move(line));
    }
    fields_ = std::move(fields);
  });
}

AQ_DataMessage AQ_DataASCII::readLines(const std::string& sFileName) {
  return reading(sFileName, [&](const std::string& name) {
    auto all = std::make_shared<Collection<std::string>>();
    LineReader lines(name);
    while (lines.next()) all->Add(std::string(lines.line()));
    lines_ = std::move(all);
  });
}

AQ_DataMessage AQ_DataASCII::writeFields(const std::string& sFileName) {
  return writing(sFileName, [&](const auto&) { return fieldsText(false); });
}

AQ_DataMessage AQ_DataASCII::appendFields(const std::string& sFileName) {
  return appending(sFileName, [&](const auto&) { return fieldsText(quotedFields_); });
}

AQ_DataMessage AQ_DataASCII::writeLines(const std::string& sFileName) {
  return writing(sFileName, [&](const auto&) { return linesText(); });
}

AQ_DataMessage AQ_DataASCII::appendLines(const std::string& sFileName) {
  return appending(sFileName, [&](const auto&) { return linesText(); });
}

void AQ_DataASCII::CommentFields(bool quoted) {
  quotedFields_ = quoted;
  opening_ = delimiter_ + kQuote;
  closing_ = kQuote + delimiter_;
}

std::shared_ptr<Collection<std::string>> AQ_DataASCII::divided(std::string_view line,
                                                               std::int32_t expected) const {
  auto fields = std::make_shared<Collection<std::string>>();
  if (delimiter_ == " ") {
    divideAtSpaces(line, *fields);
    return fields;
  }
  line = trimmed(line);
  std::string guarded;
  if (quotedFields_ && line.find(kQuote) != line.npos) line = guarded = withPlaceholders(line);
  auto count = static_cast<std::size_t>(expected);
  if (count * kLongField < line.size()) {  // perhaps far more fields than in the previous line
    count = 0;
    forEachPiece(line, delimiter_, [&](std::string_view) { ++count; });
  }
  fields->reserve(std::min(count, line.size() + 1));
  const bool plain = line.find(kQuote) == line.npos && line.find(kPlaceholder) == line.npos;
  if (plain) {
    forEachPiece(line, delimiter_,
                 [&](std::string_view piece) { fields->Emplace(trimmed(piece)); });
  } else {
    forEachPiece(line, delimiter_, [&](std::string_view piece) { fields->Add(restored(piece)); });
  }
  return fields;
}

/// The line with a placeholder for each delimiter inside a quoted field.
std::string AQ_DataASCII::withPlaceholders(std::string_view line) const {
  const auto quoteAfterDelimiter = [&](std::size_t from) {
    const std::size_t at = line.find(opening_, from);
    return at == line.npos ? at : at + opening_.size() - 1;
  };
  std::string guarded;
  std::size_t done = 0;
  std::size_t quote = line.front() == kQuote ? 0 : quoteAfterDelimiter(0);
  while (quote != line.npos) {
    const std::size_t inside = quote + 1;
    std::size_t end = line.find(closing_, inside);
    if (end == line.npos && line.size() > inside && line.back() == kQuote) end = line.size() - 1;
    if (end == line.npos) break;
    guarded += line.substr(done, inside - done);
    guarded += replaced(line.substr(inside, end - inside), delimiter_, {&kPlaceholder, 1});
    done = end;
    quote = quoteAfterDelimiter(end + 1);
  }
  guarded += line.substr(done);
  return guarded;
}

std::string AQ_DataASCII::restored(std::string_view field) const {
  std::string scratch;
  const std::string_view clean = cleanField(field, scratch);
  if (!quotedFields_ || clean.find(kPlaceholder) == clean.npos) return std::string(clean);
  return std::string(trimmed(replaced(clean, {&kPlaceholder, 1}, delimiter_)));
}

std::string AQ_DataASCII::linesText() const {
  std::string text;
  for (const std::string& line : orThrow(lines_)) {
    text += line;
    text += platform::lineEnd;
  }
  return text;
}

std::string AQ_DataASCII::fieldsText(bool quoted) const {
  std::string text;
  for (const auto& line : orThrow(fields_)) {
    std::string_view between;
    for (const std::string& field : orThrow(line)) {
      text += between;
      text += quoted ? kQuote + field + kQuote : field;
      between = delimiter_;
    }
    text += platform::lineEnd;
  }
  return text;
}

}  // namespace aq
