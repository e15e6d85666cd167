#include "aq/check/decimal_commas.h"

#include <cmath>

#include "aq/core/error.h"
#include "aq/core/time.h"
#include "aq/text/checked_keywords.h"
#include "aq/text/fields.h"
#include "aq/text/number_text.h"

namespace aq {
namespace {

bool isDigitsOnly(std::string_view text, std::size_t least) {
  return text.size() >= least && text.find_first_not_of("0123456789") == text.npos;
}

/// The part of a level before its decimals: an optional minus sign and digits, possibly none.
bool isWholePart(std::string_view text) {
  if (text.starts_with('-')) text.remove_prefix(1);
  return isDigitsOnly(text, 0);
}

std::vector<std::string_view> fieldsOfLine(std::string_view line) {
  std::vector<std::string_view> fields;
  split(line, ",", fields);
  for (std::string_view& field : fields) field = trimmed(field);
  return fields;
}

/// The value of a header line; empty if the line has another keyword.
std::string_view keywordValue(std::string_view line, std::string_view keyword) {
  const std::size_t mark = line.find(kKeywordMark);
  if (mark == line.npos || line.substr(0, mark) != keyword) return {};
  line.remove_prefix(mark + kKeywordMark.size());
  if (line.starts_with(',')) line.remove_prefix(1);
  return trimmed(line);
}

std::string joined(std::string_view whole, std::string_view decimals) {
  return std::string(whole) + '.' + std::string(decimals);
}

}  // namespace

DecimalCommas::DecimalCommas(std::span<const std::string> header) {
  for (const std::string& line : header) {
    try {
      if (const auto value = keywordValue(line, keywords::kBands); !value.empty()) {
        const auto fields = fieldsOfLine(value);
        if (fields.size() != 2) continue;
        const int count = int16From(fields[1]) - int16From(fields[0]) + 1;
        bands_ = count > 0 ? static_cast<std::size_t>(count) : 0;
      } else if (const auto clock = keywordValue(line, "ReferenceTime"); !clock.empty()) {
        std::string text(clock);  // may be "14:30:14,75"
        for (char& c : text) c = c == ',' ? '.' : c;
        AQ_Time time;
        time.TODstring(text);
        reference_ = time.TODseconds();
      }
    } catch (const Error&) {
      continue;  // the reader reports what is wrong
    }
  }
}

std::optional<std::string> DecimalCommas::mended(const std::string& line) {
  const auto fields = fieldsOfLine(line);
  if (bands_ == 0 || line.find('.') != line.npos || fields.size() <= bands_ + 3) return line;
  if (fields.size() < 2 * bands_ + 3 || fields.size() > 2 * bands_ + 5) return line;
  const std::size_t front = fields.size() - 2 * bands_;
  std::string levels;
  for (std::size_t i = front; i < fields.size(); i += 2) {
    if (!isWholePart(fields[i]) || fields[i + 1].size() != 2 || !isDigitsOnly(fields[i + 1], 2)) {
      return line;
    }
    levels += ',' + joined(fields[i], fields[i + 1]);
  }
  any_ = true;
  auto text = frontOf(std::span(fields).first(front));
  if (text) *text += levels;
  return text;
}

/// The record number, time and relative time, with decimal points; nothing unless the fields can be
/// read in exactly one way.
std::optional<std::string> DecimalCommas::frontOf(std::span<const std::string_view> fields) const {
  std::vector<std::pair<std::string, std::string>> ways;
  const auto add = [&](std::string time, std::string relative) {
    if (fits(time, relative)) ways.emplace_back(std::move(time), std::move(relative));
  };
  const auto decimals = [&](std::size_t at) { return isDigitsOnly(fields[at], 1); };
  if (fields.size() == 3) add(std::string(fields[1]), std::string(fields[2]));
  if (fields.size() == 4) {
    if (decimals(2)) add(joined(fields[1], fields[2]), std::string(fields[3]));
    if (decimals(3)) add(std::string(fields[1]), joined(fields[2], fields[3]));
  }
  if (fields.size() == 5 && decimals(2) && decimals(4)) {
    add(joined(fields[1], fields[2]), joined(fields[3], fields[4]));
  }
  if (ways.size() != 1) return std::nullopt;
  return std::string(fields[0]) + ',' + ways.front().first + ',' + ways.front().second;
}

/// Whether a time of day and a relative time can be read and, if the reference time is known, are
/// consistent.
bool DecimalCommas::fits(const std::string& time, const std::string& relative) const {
  try {
    AQ_Time clock;
    clock.TODstring(time);
    const double seconds = doubleFrom(relative);
    constexpr double kRounding = 0.02;
    if (!reference_) return true;
    const double off = clock.TODseconds() - *reference_ - seconds;
    return std::abs(std::remainder(off, kSecondsPerDay)) < kRounding;
  } catch (const Error&) {
    return false;
  }
}

}  // namespace aq
