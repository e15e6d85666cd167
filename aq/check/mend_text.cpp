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

/// Converts UTF-16 to UTF-8; nothing if the bytes are not valid UTF-16.
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
    if (code >= 0xD800 && code < 0xE000) {  // half of a character
      at += 2;
      const std::uint32_t low = at < bytes.size() ? unit(at) : 0;
      if (code >= 0xDC00 || low < 0xDC00 || low >= 0xE000) return std::nullopt;
      code = 0x10000 + ((code - 0xD800) << 10) + (low - 0xDC00);
    }
    appendUtf8(code, text);
  }
  return text;
}

/// The lines of a text, without line ends, which the steps below mend one after another.
class TextMender {
 public:
  TextMender(std::string_view bytes, std::string_view name, std::vector<std::string> done)
      : name_(name) {
    mended_.text = bytes;
    mended_.done = std::move(done);
  }

  Mended run() && {
    const auto fault = faultOfBytes(std::string_view(mended_.text).substr(0, 16));
    if (mended_.text.starts_with(sdf::kMark)) return std::move(mended_);
    if (fault && fault->kind == Kind::Compressed) return leave(fault->message);
    if (fault && !mendWide()) return leave("UTF-16 text that is truncated or damaged");
    if (mended_.text.find('\0') != std::string::npos) return leave("bytes that are not text");
    if (mended_.text.starts_with(kByteOrderMark)) {
      mended_.text.erase(0, kByteOrderMark.size());
      done("byte order mark");
    }
    mendReturns();
    mendLines();
    return std::move(mended_);
  }

 private:
  Mended leave(std::string why) {
    mended_.left.push_back(std::move(why));
    return std::move(mended_);
  }
  void done(std::string what) { mended_.done.push_back(std::move(what)); }

  bool mendWide() {
    auto text = fromUtf16(mended_.text);
    if (!text) return false;
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
      return done("carriage returns as line ends");
    }
    if (faultOfLines(text) && faultOfLines(text)->kind == Kind::LineEnds) {
      mended_.left.emplace_back("carriage returns within lines that end in line feeds");
    }
  }

  void mendLines() {
    split();
    if (lines_.empty()) return;
    mendSeparators();
    mendQuotes();
    mendFilledLines();
    mendBlankLines();
    mendDecimalCommas();
    if (mended_.done.empty()) return;
    addComment();
    join();
  }

  void split() {
    std::string_view rest = mended_.text;
    while (!rest.empty()) {
      const std::size_t end = std::min(rest.find('\n'), rest.size());
      std::string_view line = rest.substr(0, end);
      if (line.ends_with('\r')) line.remove_suffix(1), returns_ = true;
      lines_.emplace_back(line);
      rest.remove_prefix(std::min(end + 1, rest.size()));
    }
  }

  void join() {
    mended_.text.clear();
    for (const std::string& line : lines_)
      mended_.text.append(line).append(returns_ ? "\r\n" : "\n");
  }

  [[nodiscard]] bool hasKeywords() const {
    return lines_.front().find(kKeywordMark) != std::string::npos;
  }

  /// Spreadsheets separate fields by semicolons in countries with decimal commas, or by tabs.
  void mendSeparators() {
    const std::size_t mark = lines_.front().find(kKeywordMark);
    if (mark == std::string::npos) return;
    std::string_view after = std::string_view(lines_.front()).substr(mark + kKeywordMark.size());
    if (after.starts_with('"')) after.remove_prefix(1);
    const char separator = after.empty() ? ',' : after.front();
    if (separator != ';' && separator != '\t') return;
    for (std::string& line : lines_) {
      bool quoted = false;
      std::string field;
      std::string whole;
      const auto endField = [&] {
        whole += isCommaNumber(field) || isCommaTime(field) ? withPoint(field) : field;
        field.clear();
      };
      for (const char c : line) {
        if (c == '"') quoted = !quoted;
        if (c != separator || quoted) {
          field += c;
          continue;
        }
        endField();
        whole += ',';
      }
      endField();
      line = std::move(whole);
    }
    done(separator == ';' ? "semicolons between fields" : "tabs between fields");
  }

  /// A level such as "61,51"; levels below 1 dB have no digit before the comma.
  [[nodiscard]] static bool isCommaNumber(std::string_view field) {
    field = trimmed(field);
    if (field.starts_with('-')) field.remove_prefix(1);
    return isDecimalComma(field) ||
           (field.starts_with(',') && isDecimalComma("0" + std::string(field)));
  }

  /// As in "14:30:00,25".
  [[nodiscard]] static bool isCommaTime(std::string_view field) {
    const std::size_t colon = field.rfind(':');
    return colon != field.npos && isDecimalComma(field.substr(colon + 1)) &&
           field.find_first_not_of("0123456789:,") == field.npos;
  }
  [[nodiscard]] static std::string withPoint(std::string field) {
    field[field.find(',')] = '.';
    return field;
  }

  /// The fields of a line by the quoting rules of spreadsheets; nothing for a line that violates
  /// them.
  [[nodiscard]] std::optional<std::string> unquoted(std::string_view line, bool all) {
    std::string whole;
    bool any = false;
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
        // Only fields with a comma or quote must be quoted; other quotes are the author's.
        const bool needed = all || field.find_first_of(",\"") != field.npos;
        whole += needed ? field : '"' + field + '"';
        any = any || needed;
      } else {
        const std::size_t end = std::min(line.find(','), line.size());
        whole += line.substr(0, end);
        line.remove_prefix(end);
      }
      if (line.empty()) {
        found_ = found_ || any;
        return whole;
      }
      whole += ',';
      line.remove_prefix(1);
    }
  }

  void mendQuotes() {
    const bool all = lines_.front().starts_with('"') && lines_.front().ends_with('"');
    found_ = false;
    for (std::string& line : lines_) {
      if (line.find('"') == line.npos) continue;
      if (auto plain = unquoted(line, all)) line = *std::move(plain);
    }
    if (found_) done("a spreadsheet's quotes");
  }

  void mendFilledLines() {
    if (!hasKeywords() || !lines_.front().ends_with(',')) return;
    for (std::string& line : lines_) {
      line.erase(line.find_last_not_of(',') + 1);
      if (line.ends_with(kKeywordMark)) line += ',';  // of an empty value
    }
    done("trailing commas");
  }

  /// The line of the column headings, which follow the comments; nothing if it cannot be
  /// determined.
  [[nodiscard]] std::optional<std::size_t> headings() const {
    constexpr std::string_view kCount = "NumberOfCommentLines**";
    for (std::size_t at = 0; at < lines_.size(); ++at) {
      std::string_view line = lines_[at];
      if (!line.starts_with(kCount)) continue;
      line.remove_prefix(std::min(kCount.size() + 1, line.size()));
      try {
        const std::int32_t count = int32From(trimmed(line));
        const std::size_t place = at + 1 + static_cast<std::size_t>(std::max(0, count));
        if (place < lines_.size()) return place;
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
    bool doubled = before > 3;
    for (std::size_t at = 1; at < before; at += 2) doubled = doubled && isBlank(lines_[at]);
    for (std::size_t at = 0; at < before; at += 2) doubled = doubled && !isBlank(lines_[at]);
    if (doubled) {
      std::erase_if(lines_, isBlank);
    } else if (const auto at = headings()) {
      const auto data = lines_.begin() + static_cast<std::ptrdiff_t>(*at);
      lines_.erase(std::remove_if(data, lines_.end(), isBlank), lines_.end());
    } else if (hasKeywords()) {
      while (lines_.size() > 1 && isBlank(lines_.back())) lines_.pop_back();
    }
    if (lines_.size() != before) done("blank lines");
  }

  void mendDecimalCommas() {
    const auto at = headings();
    if (!at || !lines_.front().ends_with(",Spectral Time-History")) return;
    DecimalCommas commas(std::span<const std::string>(lines_).first(*at));
    std::vector<std::string> data;
    for (std::size_t i = *at + 1; i < lines_.size(); ++i) {
      auto line = commas.mended(lines_[i]);
      if (!line) {
        if (commas.any())
          mended_.left.emplace_back("decimal commas that can be read in two ways, from line " +
                                    std::to_string(i + 1) + " on");
        return;
      }
      data.push_back(*std::move(line));
    }
    if (!commas.any()) return;
    std::copy(data.begin(), data.end(), lines_.begin() + static_cast<std::ptrdiff_t>(*at) + 1);
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

  void addComment() {
    const auto at = headings();
    if (!at) return;
    std::string words;
    for (const std::string& what : mended_.done) words += (words.empty() ? "" : ", ") + what;
    std::string* count = nullptr;
    for (std::size_t i = *at; i-- > 0 && count == nullptr;) {
      if (lines_[i].starts_with("NumberOfCommentLines**")) count = &lines_[i];
    }
    const std::size_t comments = *at - static_cast<std::size_t>(count - lines_.data());
    *count = "NumberOfCommentLines**," + std::to_string(comments);
    lines_.insert(lines_.begin() + static_cast<std::ptrdiff_t>(*at),
                  "Mended from " + escaped(name_) + ": " + words);
  }

  Mended mended_;
  std::string name_;
  std::vector<std::string> lines_;
  bool returns_ = false;
  bool found_ = false;  // quotes that a spreadsheet put
};

}  // namespace

Mended mendText(std::string_view bytes, std::string_view name, std::vector<std::string> done) {
  return TextMender(bytes, name, std::move(done)).run();
}

}  // namespace aq
