// The fast paths for numbers, levels and times, compared with the exact conversions of the standard
// library and with the general paths.
#include <aq/core/time.h>
#include <aq/text/date_text.h>
#include <aq/text/level_code.h>
#include <aq/text/number_text.h>
#include <aq/text/plain_number.h>

#include <algorithm>
#include <array>
#include <bit>
#include <charconv>
#include <cmath>
#include <cstdio>
#include <cstring>
#include <vector>

#include "fuzz/targets.h"

namespace aq::fuzz {
namespace {

bool isDigit(char c) { return c >= '0' && c <= '9'; }

/// Whether two numbers are equal, telling zeros of different signs apart.
bool same(double a, double b) { return std::memcmp(&a, &b, sizeof(a)) == 0; }

std::string_view fieldAt(std::string_view text, std::size_t at) {
  return text.substr(at, std::min(text.find(',', at), text.size()) - at);
}

template <class Number>
std::optional<Number> exactly(std::string_view field) {
  Number number{};
  const auto read = std::from_chars(field.data(), field.data() + field.size(), number);
  const bool whole = read.ec == std::errc() && read.ptr == field.data() + field.size();
  return whole ? std::optional(number) : std::nullopt;
}

/// The result of `convert` for a field; nothing if it is rejected.
template <class Convert>
auto converted(const Convert& convert, std::string_view field)
    -> std::optional<decltype(convert(field))> {
  try {
    return convert(field);
  } catch (const Error&) {
    return std::nullopt;
  }
}

template <class Real, class Convert>
void checkReal(std::string_view field, const PlainNumber& plain, const Convert& convert) {
  Real quick = 0;
  if (field.find_first_not_of("0123456789.eE+-") != field.npos || field.starts_with('+')) return;
  const auto exact = exactly<Real>(field);
  const auto whole = converted(convert, field);
  expect(!exact || (whole && same(*whole, *exact)), "the nearest number");
  if (numberFrom(plain, quick))
    expect(exact && same(quick, *exact), "the nearest number by the fast path");
}

void checkNumbers(std::string_view text) {
  const std::string_view field = fieldAt(text, 0);
  const std::string_view digits = field.substr(field.starts_with('-') ? 1 : 0);
  const auto count = std::count_if(digits.begin(), digits.end(), isDigit);
  const auto points = std::count(digits.begin(), digits.end(), '.');
  const bool isPlain = count >= 1 && count <= 15 && points <= 1 &&
                       static_cast<std::size_t>(count + points) == digits.size();
  const PlainNumber plain = plainNumber(text);
  expect(plain.length == (isPlain ? field.size() : 0), "a plain number exactly where there is one");
  checkReal<double>(field, plain, doubleFrom);
  checkReal<float>(field, plain, singleFrom);

  const bool isInteger = count >= 1 && count <= 5 && points == 0 && isPlain;
  const auto integer = exactly<std::int16_t>(field);
  expect(converted(int16From, field) == integer || !integer, "the integer");
  const PlainInteger quick = plainInteger(text);
  const bool taken = isInteger && integer && *integer != INT16_MIN;
  expect(quick.length == (taken ? field.size() : 0), "a plain integer exactly where there is one");
  expect(!taken || quick.value == *integer, "the integer by the fast path");
}

void checkClock(std::string_view text) {
  constexpr std::string_view kForm = "00:00:00.000000";
  const std::string_view field = fieldAt(text, 0);
  const auto fits = [](char c, char form) { return form == '0' ? isDigit(c) : c == form; };
  const bool isClock = field.size() >= 8 && field.size() <= kForm.size() &&
                       std::equal(field.begin(), field.end(), kForm.begin(), fits);
  const PlainClock plain = plainClock(text);
  expect(plain.length == (isClock ? field.size() : 0), "a clock time exactly where there is one");
  if (!isClock) return;
  AQ_Time time;
  time.TODstring(' ' + std::string(field));  // the blank prevents the fast path
  expect(same(time.TODseconds(), plain.seconds), "the same time of day");
}

bool isLevel(std::string_view field) {
  if (field == "9999.00") return true;
  const bool negative = field.starts_with('-');
  if (negative) field.remove_prefix(1);
  if (field.size() < 3 || field.size() > 6 || field[field.size() - 3] != '.') return false;
  std::string digits(field);
  digits.erase(field.size() - 3, 1);
  const auto hundredths = exactly<std::int16_t>(digits);
  return isDigit(digits[0]) && hundredths && !(negative && hundredths == 0);
}

void checkLevels(std::string_view text, std::size_t room) {
  std::vector<LevelCode> codes(room);
  const FieldsTaken taken = levelsAtFront(text, codes);
  std::size_t at = 0;
  bool last = false;
  for (std::size_t i = 0; i < taken.count; ++i) {
    const std::string_view field = fieldAt(text, at);
    const auto exact = exactly<double>(field);
    expect(exact && same(levelOf(codes[i]), *exact) && isLevel(field), "the level of the field");
    at += field.size();
    last = at == text.size();
    if (!last) ++at;
  }
  expect(taken.length == at && taken.last == last, "the position after the levels");
  expect(taken.count == room || last || !isLevel(fieldAt(text, at)), "all levels");
}

using Text = std::array<char, 512>;

std::string printed(const char* form, int digits, double value) {
  Text text;
  std::snprintf(text.data(), text.size(), form, digits, value);
  return text.data();
}

/// What `numberText` should return: `digits` significant digits without trailing zeros.
std::string defaultText(double value, int digits) {
  std::string text = printed("%.*E", digits - 1, value);
  std::string power = text.substr(text.find('E'));
  text.resize(text.size() - power.size());
  const int exponent = std::stoi(power.substr(1));
  if (exponent >= -7 && exponent < digits) {
    text = printed("%.*f", digits - 1 - exponent, value);
    power.clear();
  }
  if (text.find('.') != text.npos) text.erase(text.find_last_not_of('0') + 1);
  if (text.ends_with('.')) text.pop_back();
  return value == 0 ? "0" : text + power;
}

std::string hundredths(double level) {
  // Only a tie has 5 as its third decimal and then 37 zeros.
  const bool tie = printed("%.*f", 40, level).ends_with("5" + std::string(37, '0'));
  std::string text = printed("%.*f", tie ? 3 : 2, level);
  if (tie) text.pop_back();
  if (tie) ++text.back();  // rounds .12, .37, .62 or .87 away from zero
  if (text.starts_with("0.") || text.starts_with("-0.")) text.erase(text.find('0'), 1);
  return text == "-.00" ? ".00" : text;
}

void checkWritten(double value) {
  if (!std::isfinite(value)) return;
  expect(numberText(value) == defaultText(value, 15), "15 digits");
  const std::string exact = hundredths(value);
  std::string text;
  appendLevels(text, std::array{value, 1.0, value});
  expect(text == exact + ",1.00," + exact, "levels with two decimals");
  const double shortened = *exactly<double>(exact);
  std::string digits = exact;
  digits.erase(digits.size() - 3, 1);
  std::optional<LevelCode> code =
      same(shortened, value) ? exactly<LevelCode>(digits) : std::nullopt;
  if (code == kInvalidCode) code.reset();
  if (value == kInvalidLevel) code = kInvalidCode;
  expect(codeOf(value) == code, "a code for a whole number of hundredths");
  text.clear();
  if (code) appendLevels(text, std::array{*code, LevelCode{100}, *code});
  expect(!code || text == exact + ",1.00," + exact, "the same text from codes");
}

void checkWritten(float value) {
  if (!std::isfinite(value)) return;
  const std::string text = numberText(value);
  expect(text == defaultText(static_cast<double>(value), 7), "7 digits");
  if (value < 0 || text.find('E') != text.npos) return;
  std::array<char, kFractionSize> buffer;
  const std::string fraction(buffer.data(), putFraction(buffer.data(), value));
  expect(fraction == text.substr(std::min(text.find('.'), text.size())),
         "the fraction of the number with 7 digits");
}

template <class Bits>
Bits bitsOf(std::string_view input) {
  Bits bits{};
  std::memcpy(&bits, input.data(), std::min(sizeof(bits), input.size()));
  return bits;
}

}  // namespace

/// The first byte chooses the function under test.
void numbers(const Target&, std::string_view input) {
  if (input.empty()) return;
  const std::string_view text = input.substr(1);
  const auto integer = static_cast<double>(bitsOf<std::int32_t>(text));
  switch (input[0] & 7) {
    case 0: return checkNumbers(text);
    case 1: return checkClock(text);
    case 2: return checkLevels(text, 3);
    case 3: return checkLevels(text, text.size());
    case 4: return checkWritten(bitsOf<double>(text));
    case 5: return checkWritten(bitsOf<float>(text));
    case 6: return checkWritten(integer / (text.size() % 2 == 0 ? 1000 : 800));
    case 7: return checkWritten(static_cast<float>(integer) / 1000);
    default: return;
  }
}

}  // namespace aq::fuzz
