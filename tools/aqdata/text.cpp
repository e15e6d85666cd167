#include "tools/aqdata/text.h"

#include <aq/core/error.h>
#include <aq/core/variant.h>
#include <fmt/format.h>

#include <algorithm>
#include <numeric>

#include "tools/aqdata/terminal.h"

namespace aqdata {
namespace {

constexpr std::size_t kGap = 2;  // between two columns

/// How many bytes of `text` fit into `columns`.
std::size_t bytesWithin(std::string_view text, std::size_t columns) {
  std::size_t at = 0;
  while (at < text.size()) {
    const auto [bytes, width] = terminal::firstOf(text.substr(at));
    if (width > columns) break;
    columns -= width;
    at += bytes;
  }
  return at;
}

/// The index from which the rest of `text` fits into `columns`.
std::size_t lastWithin(std::string_view text, std::size_t columns) {
  std::size_t at = 0;
  for (std::size_t left = widthOf(text); left > columns && at < text.size();) {
    const auto [bytes, width] = terminal::firstOf(text.substr(at));
    left -= width;
    at += bytes;
  }
  return at;
}

std::size_t editsBetween(std::string_view a, std::string_view b) {
  std::vector<std::size_t> row(b.size() + 1);
  std::iota(row.begin(), row.end(), std::size_t{0});
  for (const char c : a) {
    std::size_t diagonal = row[0]++;
    for (std::size_t j = 0; j < b.size(); ++j) {
      const std::size_t replaced = diagonal + (c == b[j] ? 0 : 1);
      diagonal = row[j + 1];
      row[j + 1] = std::min({replaced, row[j] + 1, diagonal + 1});
    }
  }
  return row.back();
}

}  // namespace

std::size_t widthOf(std::string_view text) {
  std::size_t width = 0;
  while (!text.empty()) {
    const bool colour = text.front() == '\x1b';
    const auto [bytes, columns] =
        colour ? terminal::Character{std::min(text.find('m'), text.size() - 1) + 1, 0}
               : terminal::firstOf(text);
    width += columns;
    text.remove_prefix(bytes);
  }
  return width;
}

std::string shortened(std::string_view text, std::size_t width) {
  if (widthOf(text) <= width || width < 3) return std::string(text);
  const std::size_t before = (width - 1) / 2;
  return fmt::format("{}…{}", text.substr(0, bytesWithin(text, before)),
                     text.substr(lastWithin(text, width - 1 - before)));
}

std::string cellText(const Json& value) {
  if (value.is_null()) return {};
  if (value.is_string()) return aq::escaped(value.get_ref<const std::string&>());
  return value.is_number_float() ? fmt::format("{}", value.get<double>()) : lineOf(value);
}

std::string listText(const Json& value, std::string_view between) {
  if (!value.is_array()) return cellText(value);
  std::string text;
  for (std::size_t i = 0; i < value.size(); ++i) {
    if (i != 0) text += between;
    text += cellText(value[i]);
  }
  return text;
}

std::vector<std::string> wrapped(std::string_view text, std::size_t width) {
  std::vector<std::string> lines;
  width = std::max<std::size_t>(width, 1);
  while (widthOf(text) > width) {
    const std::size_t most = bytesWithin(text, width);
    const std::size_t blank = text.rfind(' ', most);
    const std::size_t at =
        blank == text.npos || blank == 0 ? std::max(most, terminal::firstOf(text).bytes) : blank;
    lines.emplace_back(text.substr(0, at));
    text.remove_prefix(at == blank ? at + 1 : at);
  }
  lines.emplace_back(text);
  return lines;
}

std::string counted(std::size_t count, std::string_view ofWhat) {
  return fmt::format("{} {}{}", count, ofWhat, count == 1 ? "" : "s");
}

std::string nearest(std::string_view name, const std::vector<std::string>& names) {
  std::string found;
  std::size_t fewest = std::max<std::size_t>(2, name.size() / 3) + 1;
  for (const std::string& candidate : names) {
    const bool begun = name.size() > 1 && candidate.starts_with(name);
    const std::size_t edits = begun ? 1 : editsBetween(name, candidate);
    if (edits >= fewest) continue;
    fewest = edits;
    found = candidate;
  }
  return found;
}

Range rangeFrom(const std::string& text, std::string_view ofWhat) {
  const std::size_t colon = text.find(':');
  try {
    Range range;
    const std::string first = text.substr(0, colon);
    const std::string last = colon == text.npos ? first : text.substr(colon + 1);
    if (!first.empty()) range.first = aq::Variant(first).toInt16();
    if (!last.empty()) range.last = aq::Variant(last).toInt16();
    if (range.first <= range.last) return range;
  } catch (const aq::Error&) {
    // reported below
  }
  throw Failure(fmt::format("--{0}: expected a number or a range such as 10:40, found {1}", ofWhat,
                            aq::shown(text)));
}

std::vector<std::size_t> Table::widths() const {
  std::vector<std::size_t> widths;
  for (const Column& column : columns_) widths.push_back(widthOf(column.heading));
  for (const auto& row : rows_) {
    for (std::size_t i = 0; i < row.size(); ++i) widths[i] = std::max(widths[i], widthOf(row[i]));
  }
  return widths;
}

std::size_t Table::width() const {
  const auto all = widths();
  return std::accumulate(all.begin(), all.end(), kGap * (all.size() - 1));
}

void Table::fit(std::size_t width) {
  for (std::size_t i = columns_.size(); i-- > 0 && this->width() > width;) {
    if (!columns_[i].optional) continue;
    leftOut_.insert(leftOut_.begin(), columns_[i].heading);
    columns_.erase(columns_.begin() + static_cast<std::ptrdiff_t>(i));
    for (auto& row : rows_) row.erase(row.begin() + static_cast<std::ptrdiff_t>(i));
  }
  constexpr std::size_t kLeast = 12;
  const std::size_t whole = this->width();
  if (whole <= width) return;
  const std::size_t first = widths().front();
  const std::size_t room = std::max(kLeast, first - std::min(first, whole - width));
  for (auto& row : rows_) row.front() = shortened(row.front(), room);
}

void Table::print(Session& session) const {
  const auto all = widths();
  const std::size_t room =
      terminal::onOutput() ? static_cast<std::size_t>(terminal::width()) : std::string::npos;
  std::size_t next = 1;
  do {
    if (next != 1) session.print("\n");
    std::vector<std::size_t> places{0};
    std::size_t used = all[0];
    for (; next < all.size(); ++next) {
      used += kGap + all[next];
      if (used > room && places.size() > 1) break;
      places.push_back(next);
    }
    printBlock(session, places, all);
  } while (next < all.size());
  if (leftOut_.empty() || session.quiet) return;
  session.print(session.faint(fmt::format("no room for {}\n", fmt::join(leftOut_, ", "))));
}

void Table::printBlock(Session& session, const std::vector<std::size_t>& places,
                       const std::vector<std::size_t>& widths) const {
  const auto line = [&](const auto& cellAt) {
    std::string text;
    for (const std::size_t i : places) {
      const std::string& cell = cellAt(i);
      const std::string blanks(widths[i] - widthOf(cell), ' ');
      text += columns_[i].number ? blanks + cell : cell + blanks;
      text.append(kGap, ' ');
    }
    return text.erase(text.find_last_not_of(' ') + 1);
  };
  session.print(session.strong(line([&](std::size_t i) -> auto& { return columns_[i].heading; })) +
                '\n');
  for (const auto& row : rows_) {
    session.print(line([&](std::size_t i) -> auto& { return row[i]; }) + '\n');
  }
}

}  // namespace aqdata
