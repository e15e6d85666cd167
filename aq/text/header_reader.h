#pragma once

#include <concepts>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>

#include "aq/core/collection.h"
#include "aq/core/export.h"
#include "aq/core/time.h"
#include "aq/text/fields.h"
#include "aq/text/header_observer.h"
#include "aq/text/line_reader.h"

namespace aq {

/// Reads keyword header lines by position: each call takes the next line and ignores its keyword.
/// Throws `ReadFailure` if a line is missing, if the first line names another file type, or if a
/// keyword line has no "**" or a value that does not convert. `HeaderWriter` has members of the
/// same names.
class AQ_API HeaderReader {
 public:
  explicit HeaderReader(LineReader& lines) : lines_(lines) {}
  /// Calls `watch` with every line that it takes; `watch` must outlive the reader.
  HeaderReader(LineReader& lines, const HeaderObserver& watch) : lines_(lines), observer_(&watch) {}

  /// The file type that the first line names; empty if the file is empty or names none.
  [[nodiscard]] std::string_view anyTitle();

  /// Like `title`, but takes the text after the first comma and ignores the text before it.
  void titleAfterComma(std::string_view fileType);

  /// The first line; it must name exactly `fileType`.
  void title(std::string_view fileType);

  /// A line whose value is passed to `set` as text.
  template <class Get, class Set>
  void value(std::string_view keyword, const Get&, const Set& set) {
    takeValue(keyword);
    set(value_);
  }

  void text(std::string_view keyword, std::string& value);
  void textAfterBlank(std::string_view keyword, std::string& value) { text(keyword, value); }
  void single(std::string_view keyword, float& value);
  void numbers(std::string_view keyword, double& first, double& second, double& third);
  template <std::integral Integer>
  void integer(std::string_view keyword, Integer& value) {
    takeValue(keyword);
    value = convertTo<Integer>("an integer", kWhole);
  }
  void integers(std::string_view keyword, std::string_view separator, std::int16_t& first,
                std::int16_t& second);
  void timeOfDay(std::string_view keyword, AQ_Time& time);
  void recordedName(std::string_view keyword, std::string& file) { text(keyword, file); }
  void currentDateTime(std::string_view keyword, const std::shared_ptr<AQ_Time>& time);

  /// Like `currentDateTime`, but the time goes through a twelve-hour clock: 12:30:00 becomes
  /// "12:30:00 PM", which the time value reads as 88,200 s. Hosts rely on it.
  void currentDateTime12(std::string_view keyword, const std::shared_ptr<AQ_Time>& time);
  void dateTimeOf(std::string_view keyword, const std::string& /*file*/,
                  const std::shared_ptr<AQ_Time>& time) {
    currentDateTime(keyword, time);
  }
  void dateTimeOf(std::string_view keyword, const std::string& /*file*/, std::string& value) {
    text(keyword, value);
  }

  /// A line with a count, then that many lines, each up to its first "**" and without double quotes
  /// or outer blanks. A negative count reads no lines.
  void lines(std::string_view keyword, const std::shared_ptr<Collection<std::string>>& block,
             std::int16_t& count);
  void lines(std::string_view keyword, const std::shared_ptr<Collection<std::string>>& block);

  /// Takes the line above the data lines; returns it up to its first "**", without double quotes or
  /// outer blanks.
  std::string columns();

  /// Skips the line above the data lines, if there is one, without checking it.
  void skipColumns() {
    if (lines_.next()) show(HeaderLine::Use::Headings);
  }

 private:
  static constexpr std::size_t kWhole = 0;  // the whole value rather than a field of it

  void takeFirstLine(std::string_view fileType);
  void takeDate(std::string_view keyword, AQ_Time& time);
  void takeValue(std::string_view keyword, std::size_t fields = 0);
  [[nodiscard]] bool findValue();
  [[nodiscard]] std::string_view field(std::size_t number, const char* expected);
  [[noreturn]] void fail(std::size_t number, std::string expected, std::string_view found) const;
  [[nodiscard]] std::string beforeMark();
  void show(HeaderLine::Use use, std::string_view keyword = {}, std::size_t fields = 0) const;

  template <class Conversion>
  auto convert(const char* expected, std::size_t number, const Conversion& conversion) {
    const std::string_view found = field(number, expected);
    try {
      return conversion(found);
    } catch (const Error& error) {
      fail(number, expectedFor(expected, error), found);
    }
  }

  template <std::integral Integer>
  Integer convertTo(const char* expected, std::size_t number) {
    if constexpr (sizeof(Integer) == 2) {
      return convert(expected, number, int16From);
    } else {
      return convert(expected, number, int32From);
    }
  }

  LineReader& lines_;
  const HeaderObserver* observer_ = nullptr;
  std::string scratch_;
  std::string_view value_;  // of the last keyword line taken
};

}  // namespace aq
