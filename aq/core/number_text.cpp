#include "aq/core/number_text.h"

#include <algorithm>
#include <array>
#include <bit>
#include <charconv>
#include <cmath>
#include <cstring>
#include <limits>
#include <utility>

#include "aq/core/error.h"

namespace aq {
namespace {

constexpr bool isDigit(char c) { return c >= '0' && c <= '9'; }

constexpr bool isSign(char c) { return c == '+' || c == '-'; }

/// The parts of a number at the front of a text.
struct Decimal {
  bool negative = false;
  bool any = false;             // a digit was seen
  bool exact = true;            // mantissa holds all digits, and there is no exponent
  std::uint64_t mantissa = 0;   // the digits as one integer, while exact
  int decimals = 0;             // how many of them stand behind the point
  const char* begin = nullptr;  // behind a plus sign, which from_chars does not take
  const char* end = nullptr;
};

constexpr std::uint64_t kMantissaRoom = std::numeric_limits<std::uint64_t>::max() / 10 - 1;

const char* takeDigits(const char* at, const char* end, Decimal& number) {
  for (; at != end && isDigit(*at); ++at) {
    number.any = true;
    number.exact = number.exact && number.mantissa < kMantissaRoom;
    if (number.exact)
      number.mantissa = number.mantissa * 10 + static_cast<std::uint64_t>(*at - '0');
  }
  return at;
}

/// Past an exponent, if a whole one stands at `at`.
const char* skipExponent(const char* at, const char* end) {
  if (at == end || (*at != 'e' && *at != 'E')) return at;
  const char* digits = at + 1;
  if (digits != end && isSign(*digits)) ++digits;
  if (digits == end || !isDigit(*digits)) return at;
  return std::find_if_not(digits, end, isDigit);
}

Decimal scan(std::string_view text) {
  Decimal number;
  const char* at = text.data();
  const char* const end = at + text.size();
  if (at != end && isSign(*at)) number.negative = *at++ == '-';
  number.begin = number.negative ? at - 1 : at;
  at = takeDigits(at, end, number);
  if (at != end && *at == '.') {
    const char* const fraction = at + 1;
    at = takeDigits(fraction, end, number);
    number.decimals = static_cast<int>(std::min<std::ptrdiff_t>(at - fraction, 99));
  }
  if (!number.any) return number;
  number.end = skipExponent(at, end);
  number.exact = number.exact && number.end == at;
  return number;
}

/// Integers below `largest` and these powers of ten are exact, so one division rounds correctly.
template <class Real>
struct ExactRange;
template <>
struct ExactRange<double> {
  static constexpr std::uint64_t largest = std::uint64_t{1} << 53;
  static constexpr std::array powers{1e0,  1e1,  1e2,  1e3,  1e4,  1e5,  1e6,  1e7,
                                     1e8,  1e9,  1e10, 1e11, 1e12, 1e13, 1e14, 1e15,
                                     1e16, 1e17, 1e18, 1e19, 1e20, 1e21, 1e22};
};
template <>
struct ExactRange<float> {
  static constexpr std::uint64_t largest = std::uint64_t{1} << 24;
  static constexpr std::array powers{1e0F, 1e1F, 1e2F, 1e3F, 1e4F, 1e5F,
                                     1e6F, 1e7F, 1e8F, 1e9F, 1e10F};
};

[[noreturn]] void refuse(ErrorCode code, const char* expected, std::string_view text) {
  throw Error(code, std::string("expected ") + expected + ", found " + shown(text));
}

/// The power of ten of the first digit that counts: tells what is too small from what is too large.
std::int64_t magnitude(const Decimal& number) {
  constexpr std::int64_t kHuge = std::int64_t{1} << 48;
  const char* const mark =
      std::find_if(number.begin, number.end, [](char c) { return c == 'e' || c == 'E'; });
  std::int64_t exponent = 0;
  if (mark != number.end) {
    const char* const power = mark[1] == '+' ? mark + 2 : mark + 1;
    const auto read = std::from_chars(power, number.end, exponent);
    if (read.ec != std::errc() || exponent < -kHuge || exponent > kHuge) {
      exponent = *power == '-' ? -kHuge : kHuge;
    }
  }
  const char* const point = std::find(number.begin, mark, '.');
  const char* const lead =
      std::find_if(number.begin, mark, [](char c) { return c >= '1' && c <= '9'; });
  return exponent + (point - lead);
}

template <class Real>
Real realFrom(const Decimal& number) {
  using Exact = ExactRange<Real>;
  if (number.exact && number.mantissa < Exact::largest &&
      static_cast<std::size_t>(number.decimals) < Exact::powers.size()) {
    const Real value = static_cast<Real>(number.mantissa) /
                       Exact::powers[static_cast<std::size_t>(number.decimals)];
    return number.negative ? -value : value;
  }
  Real value = 0;
  const auto result = std::from_chars(number.begin, number.end, value);
  if (result.ec == std::errc()) return value;
  if (magnitude(number) <= 0) return number.negative ? -Real{0} : Real{0};
  throw Error(ErrorCode::Overflow, "number out of range: " + shown({number.begin, number.end}));
}

template <class Real>
Real wholeReal(std::string_view text) {
  const std::string_view digits = trimmed(text);
  const Decimal number = scan(digits);
  if (number.end == nullptr || number.end != digits.data() + digits.size()) {
    refuse(ErrorCode::TypeMismatch, "a number", text);
  }
  return realFrom<Real>(number);
}

template <class Integer>
Integer wholeInteger(std::string_view text) {
  std::string_view digits = trimmed(text);
  const bool plus = digits.starts_with('+');
  if (plus) digits.remove_prefix(1);
  const std::string_view unsignedDigits =
      !plus && digits.starts_with('-') ? digits.substr(1) : digits;
  if (unsignedDigits.empty() ||
      !std::all_of(unsignedDigits.begin(), unsignedDigits.end(), isDigit)) {
    refuse(ErrorCode::TypeMismatch, "an integer", text);
  }
  std::int64_t value = 0;
  const auto result = std::from_chars(digits.data(), digits.data() + digits.size(), value);
  if (result.ec != std::errc() || value < std::numeric_limits<Integer>::min() ||
      value > std::numeric_limits<Integer>::max()) {
    refuse(ErrorCode::Overflow, "a smaller integer", text);
  }
  return static_cast<Integer>(value);
}

constexpr std::size_t kLongest = 400;  // a double in fixed notation, and room to spare
using Buffer = std::array<char, kLongest>;

void requireFinite(double value) {
  if (!std::isfinite(value)) {
    throw Error(ErrorCode::InvalidValue, "a value that is no finite number has no text");
  }
}

/// `value`, not 0, with `digits` significant digits as d.ddd…e±xx: gives the digits without
/// trailing zeros, and the exponent.
template <class Real>
std::string_view significantDigits(Real value, int digits, Buffer& buffer, int& exponent) {
  const auto written = std::to_chars(buffer.data(), buffer.data() + buffer.size(), std::abs(value),
                                     std::chars_format::scientific, digits - 1);
  char* const mark = std::find(buffer.data(), written.ptr, 'e');
  const char* power = mark + 1;
  if (*power == '+') ++power;
  std::from_chars(power, written.ptr, exponent);
  buffer[1] = buffer[0];  // over the point, so that the digits stand together
  const char* last = mark;
  while (last > buffer.data() + 2 && last[-1] == '0') --last;
  return {buffer.data() + 1, last};
}

void appendFixed(std::string& text, std::string_view digits, int exponent) {
  if (exponent < 0) {
    text += "0.";
    text.append(static_cast<std::size_t>(-exponent - 1), '0');
    text += digits;
    return;
  }
  const auto whole = static_cast<std::size_t>(exponent) + 1;
  text += digits.substr(0, whole);
  if (digits.size() <= whole) {
    text.append(whole - digits.size(), '0');
  } else {
    text += '.';
    text += digits.substr(whole);
  }
}

void appendScientific(std::string& text, std::string_view digits, int exponent) {
  text += digits[0];
  if (digits.size() > 1) {
    text += '.';
    text += digits.substr(1);
  }
  text += exponent < 0 ? "E-" : "E+";
  if (std::abs(exponent) < 10) text += '0';
  appendNumber(text, std::abs(exponent));
}

constexpr int kSmallestFixed = -7;  // a tenth of a microsecond or micrometre still reads plainly

template <class Real>
void appendReal(std::string& text, Real value, int digits) {
  requireFinite(static_cast<double>(value));
  if (value == 0) {
    text += '0';
    return;
  }
  if (value < 0) text += '-';
  Buffer buffer;
  int exponent = 0;
  const std::string_view shortest = significantDigits(value, digits, buffer, exponent);
  if (exponent >= kSmallestFixed && exponent < digits) {
    appendFixed(text, shortest, exponent);
  } else {
    appendScientific(text, shortest, exponent);
  }
}

constexpr int kDoubleDigits = 15;
constexpr int kSingleDigits = 7;

/// Appends the point and the `places` digits of `fraction`, without trailing zeros; nothing for 0.
void appendFractionDigits(std::string& text, std::int64_t fraction, int places) {
  if (fraction == 0) return;
  for (; fraction % 10 == 0; fraction /= 10) --places;
  std::array<char, 16> buffer;
  char* const end = buffer.data() + buffer.size();
  char* begin = end;
  for (; places > 0; --places, fraction /= 10) *--begin = static_cast<char>('0' + fraction % 10);
  *--begin = '.';
  text.append(begin, end);
}

/// The fraction of a value from 1 to below 1e6, in 7 significant digits of the whole. A product
/// with that power of ten is exact, so that rounding it once is right.
void appendDecimals(std::string& text, float value) {
  int places = kSingleDigits - 1;
  std::int64_t scale = 1000000;
  for (float ten = 10; value >= ten; ten *= 10) {
    --places;
    scale /= 10;
  }
  const double scaled = std::nearbyint(static_cast<double>(value) * static_cast<double>(scale));
  appendFractionDigits(text, static_cast<std::int64_t>(scaled) % scale, places);
}

/// Writes a value that is a whole number of thousandths; false for any other. Its text has at most
/// 15 digits, so it is the one text that the value has with 15.
bool appendThousandths(std::string& text, double value) {
  constexpr double kScale = 1000;
  constexpr double kLargest = 1e11;
  if (!(std::abs(value) < kLargest)) return false;
  const double scaled = std::nearbyint(value * kScale);
  if (scaled / kScale != value) return false;
  const auto thousandths = static_cast<std::int64_t>(std::abs(scaled));
  if (scaled < 0) text += '-';
  std::array<char, 16> whole;
  const auto written = std::to_chars(whole.data(), whole.data() + whole.size(), thousandths / 1000);
  text.append(whole.data(), written.ptr);
  appendFractionDigits(text, thousandths % 1000, 3);
  return true;
}

/// Whether `value` lies exactly half-way between two hundredths: an odd number of eighths.
bool isHalfway(double value) { return std::fmod(std::abs(value) * 8, 2) == 1; }

constexpr std::size_t kLongestQuick = 8;  // a sign, four digits, a point, two decimals

/// The digits of 0 to 999 without zeros in front, none for 0, and how many they are.
struct WholeDigits {
  std::array<char, 3> text{};
  std::uint8_t count = 0;
};
constexpr auto kWholeDigits = [] {
  std::array<WholeDigits, 1000> all{};
  for (std::size_t number = 1; number < all.size(); ++number) {
    WholeDigits& digits = all[number];
    for (std::size_t scale = 100; scale != 0; scale /= 10) {
      if (number < scale) continue;
      digits.text[digits.count++] = static_cast<char>('0' + number / scale % 10);
    }
  }
  return all;
}();

/// Writes a level of less than 1000 dB either way; gives where it ends, `nullptr` when its
/// hundredths are not beyond doubt.
char* writeQuickly(char* at, double value) {
  constexpr double kEnd = 99999;      // below, a product with 100 is off by less than 1e-9
  constexpr double kNearHalf = 1e-3;  // closer than this to a half, the exact digits decide
  const double size = std::abs(value) * 100;
  if (!(size < kEnd)) return nullptr;
  const auto below = static_cast<std::uint32_t>(size);
  const double above = size - below;
  if (std::abs(above - 0.5) < kNearHalf) return nullptr;
  const std::uint32_t hundredths = below + (above > 0.5 ? 1 : 0);
  *at = '-';
  at += value < 0 && hundredths > 0 ? 1 : 0;
  const WholeDigits& whole = kWholeDigits[hundredths / 100];
  std::memcpy(at, whole.text.data(), whole.text.size());
  at += whole.count;
  *at++ = '.';
  *at++ = static_cast<char>('0' + hundredths / 10 % 10);
  *at++ = static_cast<char>('0' + hundredths % 10);
  return at;
}

/// Any finite value, by its exact decimal expansion.
void appendExactHundredths(std::string& text, double value) {
  requireFinite(value);
  const bool halfway = isHalfway(value);
  Buffer buffer;
  const auto written = std::to_chars(buffer.data(), buffer.data() + buffer.size(), std::abs(value),
                                     std::chars_format::fixed, halfway ? 3 : 2);
  char* end = written.ptr;
  if (halfway) {
    // .125, .375, .625 or .875: up without a carry, where to_chars would take the even digit.
    --end;
    ++end[-1];
  }
  std::string_view digits(buffer.data(), static_cast<std::size_t>(end - buffer.data()));
  if (digits.starts_with("0.")) digits.remove_prefix(1);
  if (value < 0 && digits != ".00") text += '-';
  text += digits;
}

// A level as one word of eight bytes, the first byte lowest.

constexpr std::size_t kWord = 8;

/// Where the first point stands, 8 if nowhere.
unsigned placeOfPoint(std::uint64_t bytes) {
  constexpr std::uint64_t kOnes = 0x0101010101010101;
  const std::uint64_t points = bytes ^ (kOnes * '.');
  const std::uint64_t zeros = (points - kOnes) & ~points & (kOnes << 7);
  return static_cast<unsigned>(std::countr_zero(zeros)) / 8;
}

/// "0" for the digits that a level of so many whole digits lacks of three.
constexpr std::array<std::uint64_t, 4> kZerosInFront{0x303030, 0x3030, 0x30, 0};

/// Whether all bytes but the point, which is fourth, and what follows are digits.
bool areLevelDigits(std::uint64_t placed) {
  constexpr std::uint64_t kHigh = 0x0000F0F000F0F0F0;
  constexpr std::uint64_t kDigits = 0x0000303000303030;
  constexpr std::uint64_t kSix = 0x0000060600060606;
  const std::uint64_t digits = placed & 0x0000FFFF00FFFFFF;
  return (digits & kHigh) == kDigits && ((digits + kSix) & kHigh) == kDigits;
}

/// The digits of a level as one number.
std::uint64_t hundredthsOf(std::uint64_t placed) {
  const auto digit = [placed](unsigned place) { return placed >> (8 * place) & 15; };
  return digit(0) * 10000 + digit(1) * 1000 + digit(2) * 100 + digit(4) * 10 + digit(5);
}

}  // namespace

std::string_view trimmed(std::string_view text) {
  while (!text.empty() && text.front() == ' ') text.remove_prefix(1);
  while (!text.empty() && text.back() == ' ') text.remove_suffix(1);
  return text;
}

std::string upperCased(std::string_view text) {
  std::string capitals(text);
  for (char& c : capitals) {
    if (c >= 'a' && c <= 'z') c = static_cast<char>(c - 'a' + 'A');
  }
  return capitals;
}

double doubleFrom(std::string_view text) { return wholeReal<double>(text); }
float singleFrom(std::string_view text) { return wholeReal<float>(text); }
std::int32_t int32From(std::string_view text) { return wholeInteger<std::int32_t>(text); }
std::int16_t int16From(std::string_view text) { return wholeInteger<std::int16_t>(text); }
std::uint8_t byteFrom(std::string_view text) { return wholeInteger<std::uint8_t>(text); }

LevelsTaken levelsAtFront(std::string_view text, char delimiter, std::span<double> values) {
  LevelsTaken taken;
  if constexpr (std::endian::native != std::endian::little) return taken;
  const char* at = text.data();
  const char* const end = at + text.size();
  while (taken.count < values.size() && end - at > static_cast<std::ptrdiff_t>(kWord)) {
    const bool negative = *at == '-';
    const char* const digits = negative ? at + 1 : at;
    std::uint64_t bytes = 0;
    std::memcpy(&bytes, digits, kWord);
    const unsigned wholeDigits = placeOfPoint(bytes);
    if (wholeDigits > 3) break;
    // The digits to fixed places, with zeros in front: d d d . d d, then what follows.
    const std::uint64_t placed = bytes << (8 * (3 - wholeDigits)) | kZerosInFront[wholeDigits];
    if (static_cast<char>(placed >> 48) != delimiter || !areLevelDigits(placed)) break;
    const double size = static_cast<double>(hundredthsOf(placed)) / 100;  // correctly rounded
    values[taken.count++] = negative ? -size : size;
    at = digits + wholeDigits + 4;
  }
  taken.length = static_cast<std::size_t>(at - text.data());
  return taken;
}

double leadingNumber(std::string_view text) {
  text = trimmed(text);
  std::string joined;
  if (text.find(' ') != std::string_view::npos) {
    std::copy_if(text.begin(), text.end(), std::back_inserter(joined),
                 [](char c) { return c != ' '; });
    text = joined;
  }
  const Decimal number = scan(text);
  return number.any ? realFrom<double>(number) : 0;
}

void appendNumber(std::string& text, double value) {
  if (!appendThousandths(text, value)) appendReal(text, value, kDoubleDigits);
}

void appendNumber(std::string& text, float value) { appendReal(text, value, kSingleDigits); }

void appendNumber(std::string& text, std::int32_t value) {
  std::array<char, 12> buffer;
  const auto written = std::to_chars(buffer.data(), buffer.data() + buffer.size(), value);
  text.append(buffer.data(), written.ptr);
}

std::string numberText(double value) {
  std::string text;
  appendNumber(text, value);
  return text;
}

std::string numberText(float value) {
  std::string text;
  appendNumber(text, value);
  return text;
}

std::string numberText(std::int32_t value) {
  std::string text;
  appendNumber(text, value);
  return text;
}

void appendFraction(std::string& text, float value) {
  if (value == std::floor(value)) return;
  if (value >= 1 && value < 1e6F) {
    appendDecimals(text, value);
    return;
  }
  Buffer buffer;
  int exponent = 0;
  const std::string_view digits = significantDigits(value, kSingleDigits, buffer, exponent);
  std::string plain;
  appendFixed(plain, digits, exponent);
  const std::size_t point = plain.find('.');
  if (point != std::string::npos) text.append(plain, point);
}

void appendHundredths(std::string& text, double value) { appendHundredths(text, {&value, 1}); }

void appendHundredths(std::string& text, std::span<const double> values) {
  std::array<char, 32 * (kLongestQuick + 1)> buffer;
  char* at = buffer.data();
  const char* const full = buffer.data() + buffer.size() - kLongestQuick - 1;
  bool first = true;
  for (const double value : values) {
    if (!std::exchange(first, false)) *at++ = ',';
    char* const end = writeQuickly(at, value);
    if (end != nullptr && end < full) {
      at = end;
      continue;
    }
    text.append(buffer.data(), end != nullptr ? end : at);
    if (end == nullptr) appendExactHundredths(text, value);
    at = buffer.data();
  }
  text.append(buffer.data(), at);
}

}  // namespace aq
