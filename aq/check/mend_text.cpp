#include "aq/check/mend_text.h"

#include <algorithm>
#include <optional>
#include <span>
#include <utility>

#include "aq/check/decimal_commas.h"
#include "aq/check/text_form.h"
#include "aq/core/error.h"
#include "aq/sdf/record_list.h"
#include "aq/text/fields.h"
#include "aq/text/number_text.h"

namespace aq {
namespace {

void appendUtf8(std::uint32_t code, std::string& text) {
  const auto byte = [&](std::uint32_t bits) { text += static_cast<char>(bits); };
  const auto following = [&](std::uint32_t bits) { byte(0x80 | (bits & 0x3F)); };
  if (code < 0x80) return byte(code);
  if (code < 0x800) return byte(0xC0 | code >> 6), following(code);
  if (code < 0x10000) return byte(0xE0 | code >> 12), following(code >> 6), following(code);
  byte(0xF0 | code >> 18), following(code >> 12), following(code >> 6), following(code);
}

/// Converts UTF-16 to UTF-8; returns nothing if `bytes`, which must not be empty, are not valid
/// UTF-16.
std::optional<std::string> fromUtf16(std::string_view bytes) {
  const bool mark = bytes.starts_with("\xFF\xFE") || bytes.starts_with("\xFE\xFF");
  const bool highFirst = mark ? bytes.front() == '\xFE' : bytes.front() == '\0';
  if (bytes.size() % 2 != 0) return std::nullopt;
  const auto unit = [&](std::size_t at) -> std::uint32_t {
    const auto one = static_cast<unsigned char>(bytes[at]);
    const auto other = static_cast<unsigned char>(bytes[at + 1]);
    return highFirst ? one * 256U + other : other * 256U + one;
  };
  std::string text;
  for (std::size_t at = mark ? 2 : 0; at < bytes.size(); at += 2) {
    std::uint32_t code = unit(at);
    if (code >= 0xD800 && code < 0xE000) {  // half of a surrogate pair
      at += 2;
      const std::uint32_t low = at < bytes.size() ? unit(at) : 0;
      if (code >= 0xDC00 || low < 0xDC00 || low >= 0xE000) return std::nullopt;
      code = 0x10000 + ((code - 0xD800) << 10) + (low - 0xDC00);
    }
    appendUtf8(code, text);
  }
  return text;
}

/// Holds the lines of a file, without their line endings, and mends them in the steps below.
class TextMender {
 public:
  TextMender(std::string_view bytes, std::string_view name, std::vector<std::string> done)
      : bytes_(bytes), name_(name), doneBefore_(done.size()) {
    mended_.text = bytes;
    mended_.done = std::move(done);
  }

  Mended run() && {
    const auto fault = faultAtStart();
    if (mended_.text.starts_with(sdf::kMark)) return std::move(mended_);
    if (fault && fault->kind == Kind::Compressed) return leave(fault->message);
    if (fault && !mendWide()) return leave("UTF-16 text that is truncated or damaged");
    if (mended_.text.find('\0') != std::string::npos) return leave("bytes that are not text");
    mendReturns();
    mendLines();
    if (!faultAtStart()) return std::move(mended_);
    // With its quotes or byte order mark removed, the text begins like UTF-16 or a compressed file;
    // no program writes such a file.
    mended_.text = bytes_;
    mended_.done.resize(doneBefore_);
    mended_.left.clear();
    return leave("bytes that are not text");
  }

 private:
  [[nodiscard]] std::optional<TextFault> faultAtStart() const {
    return faultOfBytes(std::string_view(mended_.text).substr(0, 16));
  }

  Mended leave(std::string why) {
    mended_.left.push_back(std::move(why));
    return std::move(mended_);
  }
  void done(std::string what) {
    again_ = true;
    if (std::find(mended_.done.begin(), mended_.done.end(), what) != mended_.done.end()) return;
    mended_.done.push_back(std::move(what));
  }

  bool mendWide() {
    auto text = fromUtf16(mended_.text);
    if (!text || text->find('\0') != text->npos) return false;
    mended_.text = *std::move(text);
    done("UTF-16");
    return true;
  }

  void mendReturns() {
    std::string& text = mended_.text;
    const bool feeds = text.find('\n') != text.npos;
    if (text.find('\r') == text.npos) return;
    if (!feeds) {
      std::replace(text.begin(), text.end(), '\r', '\n');
      return done("carriage returns as line endings");
    }
    if (faultOfLines(text) && faultOfLines(text)->kind == Kind::LineEnds) {
      mended_.left.emplace_back("carriage returns within lines that end in line feeds");
    }
  }

  void mendLines() {
    split();
    if (lines_.empty()) return;
    const std::size_t left = mended_.left.size();
    do {  // removing quotes may reveal more to mend
      again_ = false;
      mended_.left.resize(left);
      mendMark();
      mendSeparators();
      mendQuotes();
      mendFilledLines();
      mendBlankLines();
      mendDecimalCommas();
      dropReturns();
    } while (again_);
    if (unsure_ != 0) {
      mended_.left.push_back(
          "semicolons or tabs within text, which may have been commas, from line " +
          std::to_string(unsure_) + " on");
    }
    if (mended_.done.empty()) return;
    addComment();
    join();
  }

  void split() {
    std::string_view rest = mended_.text;
    ends_ = rest.ends_with('\n');
    while (!rest.empty()) {
      const std::size_t end = std::min(rest.find('\n'), rest.size());
      std::string_view line = rest.substr(0, end);
      // Only a return before a line feed belongs to the line ending.
      if (end < rest.size() && line.ends_with('\r')) line.remove_suffix(1), returns_ = true;
      lines_.emplace_back(line);
      rest.remove_prefix(std::min(end + 1, rest.size()));
    }
  }

  void join() {
    const std::string_view end = returns_ ? "\r\n" : "\n";
    mended_.text.clear();
    for (const std::string& line : lines_) mended_.text.append(line).append(end);
    // A last line without a line ending is not given one, since it is a sign of a truncated file.
    if (!ends_) mended_.text.resize(mended_.text.size() - end.size());
  }

  void mendMark() {
    std::string& first = lines_.front();
    while (first.starts_with(kByteOrderMark)) {
      first.erase(0, kByteOrderMark.size());
      done("byte order mark");
    }
  }

  [[nodiscard]] bool hasKeywords() const {
    return lines_.front().find(kKeywordMark) != std::string::npos;
  }

  /// Spreadsheets separate fields with tabs or, in countries that use decimal commas, semicolons.
  void mendSeparators() {
    const std::size_t mark = lines_.front().find(kKeywordMark);
    if (mark == std::string::npos) return;
    std::string_view after = std::string_view(lines_.front()).substr(mark + kKeywordMark.size());
    if (after.starts_with('"')) after.remove_prefix(1);
    const char found = after.empty() ? ',' : after.front();
    const auto place = lines_.front().end() - static_cast<std::ptrdiff_t>(after.size());
    const bool quoted = std::count(lines_.front().begin(), place, '"') % 2 != 0;
    if ((found == ';' || found == '\t') && !quoted) separateAnew(found);
  }

  void separateAnew(char separator) {
    separator_ = separator;
    const auto places = header();
    const bool filled = lines_.front().ends_with(separator);
    for (std::size_t at = 0; at < lines_.size(); ++at) {
      std::string& line = lines_[at];
      const bool data = places && at >= places->headings;
      const std::string_view text = data ? "" : textIn(line, !places || at <= places->count);
      std::string kept(text);
      if (filled) kept.erase(kept.find_last_not_of(separator) + 1);
      const std::size_t begin = line.size() - text.size();
      const std::size_t end = begin + kept.size();
      if (unsure_ == 0 && hasSeparator(kept)) unsure_ = at + 1;
      std::string mended = separated(line.substr(0, begin));
      mended += kept;
      mended += separated(line.substr(end));
      line = std::move(mended);
    }
    done(separator == ';' ? "semicolons between fields" : "tabs between fields");
  }

  /// The free text of a header line: a comment, or the value of a keyword such as `ProjectName`. A
  /// separator in it may be the author's own or a former comma. Empty for numbers, dates and times.
  [[nodiscard]] std::string_view textIn(std::string_view line, bool mayHaveKeyword) const {
    const std::size_t mark = mayHaveKeyword ? line.find(kKeywordMark) : line.npos;
    if (mark == line.npos) return line;
    std::string_view keyword = line.substr(0, mark);
    std::string_view value = line.substr(mark + kKeywordMark.size());
    if (value.starts_with('"')) value.remove_prefix(1);  // ends a quoted keyword
    if (!value.empty()) value.remove_prefix(1);
    for (const std::string_view ending : {"Name", "ID", "Code", "By", "File"}) {
      if (keyword.ends_with(ending)) return value;
    }
    const std::string numbers = std::string("0123456789+-.,:/Ee\" ") + separator_;
    return value.find_first_not_of(numbers) == value.npos ? std::string_view() : value;
  }

  /// Whether `text` has a separator outside quotes.
  [[nodiscard]] bool hasSeparator(std::string_view text) const {
    bool quoted = false;
    return std::any_of(text.begin(), text.end(), [&](char c) {
      if (c == '"') quoted = !quoted;
      return c == separator_ && !quoted;
    });
  }

  /// The line with commas between its fields, and with decimal points in its numbers and times.
  [[nodiscard]] std::string separated(std::string_view line) const {
    bool quoted = false;
    std::string field;
    std::string whole;
    const auto endField = [&] {
      whole += isCommaNumber(field) || isCommaTime(field) ? withPoint(field) : field;
      field.clear();
    };
    for (const char c : line) {
      if (c == '"') quoted = !quoted;
      if (c != separator_ || quoted) {
        field += c;
        continue;
      }
      endField();
      whole += ',';
    }
    endField();
    return whole;
  }

  /// Whether a field is a number such as "61,51"; a level below 1 dB may have no digit before the
  /// comma.
  [[nodiscard]] static bool isCommaNumber(std::string_view field) {
    field = trimmed(field);
    if (field.starts_with('-')) field.remove_prefix(1);
    return isDecimalComma(field) ||
           (field.starts_with(',') && isDecimalComma("0" + std::string(field)));
  }

  /// Whether a field is a time of day such as "14:30:00,25".
  [[nodiscard]] static bool isCommaTime(std::string_view field) {
    const std::size_t colon = field.rfind(':');
    return colon != field.npos && isDecimalComma(field.substr(colon + 1)) &&
           field.find_first_not_of("0123456789:,") == field.npos;
  }
  [[nodiscard]] static std::string withPoint(std::string field) {
    field[field.find(',')] = '.';
    return field;
  }

  /// The line without the quotes that a spreadsheet added; nothing for a line that violates the
  /// quoting rules of spreadsheets. If `all`, removes all quotes around fields.
  [[nodiscard]] std::optional<std::string> unquoted(std::string_view line, bool all) const {
    const char special[] = {',', '"', separator_ == '\0' ? ',' : separator_};
    std::string whole;
    while (true) {
      if (line.starts_with('"')) {
        std::string field;
        std::size_t at = 1;
        for (; at < line.size(); ++at) {
          if (line[at] != '"') {
            field += line[at];
          } else if (line.substr(at + 1).starts_with('"')) {
            field += line[at++];
          } else {
            break;
          }
        }
        if (at >= line.size()) return std::nullopt;
        line.remove_prefix(at + 1);
        if (!line.empty() && line.front() != ',') return std::nullopt;
        // Only a field with a separator or a quote in it needs quotes; all other quotes are the
        // author's.
        const bool needed = all || field.find_first_of(special, 0, sizeof special) != field.npos;
        whole += needed ? field : '"' + field + '"';
      } else {
        const std::size_t end = std::min(line.find(','), line.size());
        whole += line.substr(0, end);
        line.remove_prefix(end);
      }
      if (line.empty()) return whole;
      whole += ',';
      line.remove_prefix(1);
    }
  }

  void mendQuotes() {
    const auto isWhollyQuoted = [](const std::string& line) {
      return line.starts_with('"') && line.ends_with('"');
    };
    const bool all = isWhollyQuoted(lines_.front());
    bool found = false;
    for (std::size_t at = 0; at < lines_.size(); ++at) {
      std::string& line = lines_[at];
      if (line.find('"') == line.npos) continue;
      auto plain = unquoted(line, all);
      if (!plain || *plain == line) continue;
      if (unquoted(*plain, at == 0 && isWhollyQuoted(*plain)).value_or(*plain) != *plain) {
        mended_.left.push_back("quotes within quotes in line " + std::to_string(at + 1));
        continue;
      }
      line = *std::move(plain);
      found = true;
    }
    if (found) done("a spreadsheet's quotes");
  }

  /// A line as it was before it was padded with commas.
  [[nodiscard]] static std::string unfilled(const std::string& line) {
    std::string plain = line.substr(0, line.find_last_not_of(',') + 1);
    if (plain.ends_with(kKeywordMark) && plain != line) plain += ',';  // before an empty value
    return plain;
  }

  void mendFilledLines() {
    const std::string first = lines_.front();
    if (!hasKeywords() || unfilled(first) == first) return;
    const auto isFilled = [&](const std::string& line) {
      const auto commas = [](const std::string& text) {
        return std::count(text.begin(), text.end(), ',');
      };
      const auto last = [](const std::string& text) {
        return text.size() - (text.find_last_not_of(',') + 1);
      };
      return commas(line) >= commas(first) || last(line) >= last(first);
    };
    for (std::string& line : lines_) {
      if (isFilled(line)) line = unfilled(line);
    }
    done("trailing commas");
  }

  /// The indices of the line with the comment count and of the column headings after the comments.
  struct HeaderPlaces {
    std::size_t count = 0;
    std::size_t headings = 0;
  };

  /// Nothing if there is no valid comment count.
  [[nodiscard]] std::optional<HeaderPlaces> header() const {
    constexpr std::string_view kCount = "NumberOfCommentLines**";
    for (std::size_t at = 0; at < lines_.size(); ++at) {
      std::string_view line = lines_[at];
      if (line.starts_with('"')) line.remove_prefix(1);
      if (!line.starts_with(kCount)) continue;
      line.remove_prefix(kCount.size());
      const auto isPadding = [](char c) { return c == ',' || c == ';' || c == '\t' || c == '"'; };
      while (!line.empty() && isPadding(line.front())) line.remove_prefix(1);
      while (!line.empty() && isPadding(line.back())) line.remove_suffix(1);
      try {
        const std::int32_t count = int32From(trimmed(line));
        const std::size_t place = at + 1 + static_cast<std::size_t>(std::max(0, count));
        if (place < lines_.size()) return HeaderPlaces{at, place};
      } catch (const Error&) {
        return std::nullopt;
      }
    }
    return std::nullopt;
  }

  [[nodiscard]] static bool isBlank(const std::string& line) {
    return line.find_first_not_of(" \t") == line.npos;
  }

  /// A blank line in the header may be an empty comment, unless every second line is blank.
  void mendBlankLines() {
    const std::size_t before = lines_.size();
    const bool blankEnd = isBlank(lines_.back());
    bool doubled = before > 3;
    for (std::size_t at = 1; at < before; at += 2) doubled = doubled && isBlank(lines_[at]);
    for (std::size_t at = 0; at < before; at += 2) doubled = doubled && !isBlank(lines_[at]);
    if (doubled) {
      std::erase_if(lines_, isBlank);
    } else if (const auto places = header()) {
      const auto data = lines_.begin() + static_cast<std::ptrdiff_t>(places->headings);
      lines_.erase(std::remove_if(data, lines_.end(), isBlank), lines_.end());
    } else if (hasKeywords()) {
      while (lines_.size() > 1 && isBlank(lines_.back())) lines_.pop_back();
    }
    if (lines_.size() == before) return;
    ends_ = ends_ || blankEnd;  // the lines before the last one have line endings
    done("blank lines");
  }

  void mendDecimalCommas() {
    const auto places = header();
    if (!places || !lines_.front().ends_with(",Spectral Time-History")) return;
    DecimalCommas commas(std::span<const std::string>(lines_).first(places->headings));
    std::vector<std::string> data;
    for (std::size_t i = places->headings + 1; i < lines_.size(); ++i) {
      auto line = commas.mended(lines_[i]);
      if (!line) {
        if (commas.any())
          mended_.left.emplace_back(
              "decimal commas that cannot be told from separators, from line " +
              std::to_string(i + 1) + " on");
        return;
      }
      data.push_back(*std::move(line));
    }
    if (!commas.any()) return;
    std::copy(data.begin(), data.end(),
              lines_.begin() + static_cast<std::ptrdiff_t>(places->headings) + 1);
    for (std::string& line : lines_) {
      const std::size_t mark = line.find(kKeywordMark);
      if (mark == line.npos || !line.substr(0, mark).ends_with("Time")) continue;
      const std::size_t value = std::min(mark + kKeywordMark.size() + 1, line.size());
      if (isCommaTime(std::string_view(line).substr(value))) {
        line = line.substr(0, value) + withPoint(line.substr(value));
      }
    }
    done("decimal commas");
  }

  /// Drops a carriage return that mending has brought to the end of a line: with the line feed that
  /// follows, it would be read as a line ending.
  void dropReturns() {
    if (returns_) return;
    const std::size_t ended = lines_.size() - (ends_ ? 0 : 1);
    for (std::size_t at = 0; at < ended; ++at) {
      if (!lines_[at].ends_with('\r')) continue;
      lines_[at].pop_back();
      again_ = true;
    }
  }

  void addComment() {
    const auto places = header();
    if (!places) return;
    std::string words;
    for (const std::string& what : mended_.done) words += (words.empty() ? "" : ", ") + what;
    const auto [count, at] = *places;
    lines_[count] = "NumberOfCommentLines**," + std::to_string(at - count);
    lines_.insert(lines_.begin() + static_cast<std::ptrdiff_t>(at),
                  "Mended from " + escaped(name_) + ": " + words);
  }

  Mended mended_;
  std::string_view bytes_;
  std::string name_;
  std::size_t doneBefore_;
  std::vector<std::string> lines_;
  char separator_ = '\0';   // the one that a spreadsheet used instead of commas
  std::size_t unsure_ = 0;  // the first line whose text has a separator; 0 for none
  bool returns_ = false;
  bool ends_ = false;   // the last line has a line ending
  bool again_ = false;  // something was mended
};

}  // namespace

Mended mendText(std::string_view bytes, std::string_view name, std::vector<std::string> done) {
  return TextMender(bytes, name, std::move(done)).run();
}

}  // namespace aq
