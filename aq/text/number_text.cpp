#include "aq/text/number_text.h"

#include <algorithm>
#include <array>
#include <bit>
#include <charconv>
#include <cmath>
#include <cstring>
#include <limits>
#include <utility>

#include "aq/core/error.h"
#include "aq/text/plain_number.h"

namespace aq {
namespace {

constexpr bool isDigit(char c) { return c >= '0' && c <= '9'; }

constexpr bool isSign(char c) { return c == '+' || c == '-'; }

/// Where the number at the start of a text begins and ends.
struct Extent {
  const char* begin = nullptr;  // after a plus sign, which from_chars does not accept
  const char* end = nullptr;    // `nullptr` when there is no number
};

/// Skips an exponent, if there is a complete one at `at`.
const char* skipExponent(const char* at, const char* end) {
  if (at == end || (*at != 'e' && *at != 'E')) return at;
  const char* digits = at + 1;
  if (digits != end && isSign(*digits)) ++digits;
  if (digits == end || !isDigit(*digits)) return at;
  return std::find_if_not(digits, end, isDigit);
}

Extent extentOf(std::string_view text) {
  const char* at = text.data();
  const char* const end = at + text.size();
  const bool negative = at != end && *at == '-';
  if (at != end && isSign(*at)) ++at;
  Extent number{negative ? at - 1 : at, nullptr};
  const char* const whole = at;
  at = std::find_if_not(at, end, isDigit);
  bool any = at != whole;
  if (at != end && *at == '.') {
    const char* const fraction = at + 1;
    at = std::find_if_not(fraction, end, isDigit);
    any = any || at != fraction;
  }
  if (any) number.end = skipExponent(at, end);
  return number;
}

[[noreturn]] void refuse(ErrorCode code, const char* expected, std::string_view text) {
  throw Error(code, std::string("expected ") + expected + ", found " + shown(text));
}

/// The decimal order of magnitude, which tells numbers too small for the type from those too large.
std::int64_t magnitude(const Extent& number) {
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
Real realFrom(const Extent& number) {
  Real value = 0;
  const auto result = std::from_chars(number.begin, number.end, value);
  if (result.ec == std::errc()) return value;
  if (magnitude(number) <= 0) return *number.begin == '-' ? -Real{0} : Real{0};
  throw Error(ErrorCode::Overflow, "number out of range: " + shown({number.begin, number.end}));
}

template <class Real>
Real wholeReal(std::string_view text) {
  const std::string_view digits = trimmed(text);
  const PlainNumber plain = plainNumber(digits);
  Real value = 0;
  if (plain.length == digits.size() && numberFrom(plain, value)) return value;
  const Extent number = extentOf(digits);
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
    const std::string range = "an integer from " +
                              std::to_string(std::numeric_limits<Integer>::min()) + " to " +
                              std::to_string(std::numeric_limits<Integer>::max());
    refuse(ErrorCode::Overflow, range.c_str(), text);
  }
  return static_cast<Integer>(value);
}

using Buffer = std::array<char, 64>;  // long enough for every use below

void requireFinite(double value) {
  if (!std::isfinite(value)) {
    throw Error(ErrorCode::InvalidValue,
                "a value that is not a finite number cannot be written as text");
  }
}

/// Rounds `value`, which is not 0, to `digits` significant digits and returns them without trailing
/// zeros; sets `exponent` to the power of ten of the first one.
template <class Real>
std::string_view significantDigits(Real value, int digits, Buffer& buffer, int& exponent) {
  const auto written = std::to_chars(buffer.data(), buffer.data() + buffer.size(), std::abs(value),
                                     std::chars_format::scientific, digits - 1);
  char* const mark = std::find(buffer.data(), written.ptr, 'e');
  const char* power = mark + 1;
  if (*power == '+') ++power;
  std::from_chars(power, written.ptr, exponent);
  buffer[1] = buffer[0];  // overwrites the point, so that the digits are contiguous
  const char* last = mark;
  while (last > buffer.data() + 2 && last[-1] == '0') --last;
  return {buffer.data() + 1, last};
}

char* put(char* at, std::string_view text) { return std::copy(text.begin(), text.end(), at); }

char* putFixed(char* at, std::string_view digits, int exponent) {
  if (exponent < 0) {
    at = std::fill_n(put(at, "0."), -exponent - 1, '0');
    return put(at, digits);
  }
  const auto whole = static_cast<std::size_t>(exponent) + 1;
  at = put(at, digits.substr(0, whole));
  if (digits.size() <= whole) return std::fill_n(at, whole - digits.size(), '0');
  *at++ = '.';
  return put(at, digits.substr(whole));
}

char* putScientific(char* at, std::string_view digits, int exponent) {
  *at++ = digits[0];
  if (digits.size() > 1) {
    *at++ = '.';
    at = put(at, digits.substr(1));
  }
  at = put(at, exponent < 0 ? "E-" : "E+");
  if (std::abs(exponent) < 10) *at++ = '0';
  return putNumber(at, std::abs(exponent));
}

constexpr int kSmallestFixed = -7;  // a tenth of a microsecond or micrometre needs no exponent

template <class Real>
char* putReal(char* at, Real value, int digits) {
  requireFinite(static_cast<double>(value));
  if (value == 0) return put(at, "0");
  if (value < 0) *at++ = '-';
  Buffer buffer;
  int exponent = 0;
  const std::string_view shortest = significantDigits(value, digits, buffer, exponent);
  return exponent >= kSmallestFixed && exponent < digits ? putFixed(at, shortest, exponent)
                                                         : putScientific(at, shortest, exponent);
}

constexpr int kDoubleDigits = 15;
constexpr int kSingleDigits = 7;

/// Writes the point and the `places` digits of `fraction`, without trailing zeros; nothing for 0.
char* putFractionDigits(char* at, std::int32_t fraction, int places) {
  if (fraction == 0) return at;
  *at = '.';
  for (int place = places; place > 0; --place, fraction /= 10) {
    at[place] = static_cast<char>('0' + fraction % 10);
  }
  at += places;
  while (*at == '0') --at;
  return at + 1;
}

/// Writes the fraction of a value of at least 1 and below 1e6, which is rounded to 7 significant
/// digits. The value times a power of ten is exact in double precision, so rounding it once is
/// correct.
char* putDecimals(char* at, float value) {
  int places = kSingleDigits - 1;
  std::int32_t scale = 1000000;
  for (float ten = 10; value >= ten; ten *= 10) {
    --places;
    scale /= 10;
  }
  const double scaled = std::nearbyint(static_cast<double>(value) * scale);
  return putFractionDigits(at, static_cast<std::int32_t>(scaled) % scale, places);
}

/// Writes a value below 1e11 in magnitude that is a whole number of thousandths; returns `nullptr`
/// for any other. The text has at most 14 digits, so rounding the value to 15 digits gives the same
/// text.
char* putThousandths(char* at, double value) {
  constexpr double kScale = 1000;
  constexpr double kLargest = 1e11;
  const double size = std::abs(value);
  if (!(size < kLargest)) return nullptr;
  const auto thousandths = static_cast<std::int64_t>(std::nearbyint(size * kScale));
  if (static_cast<double>(thousandths) / kScale != size) return nullptr;
  if (value < 0) *at++ = '-';
  at = std::to_chars(at, at + kIntegerSize, thousandths / 1000).ptr;
  return putFractionDigits(at, static_cast<std::int32_t>(thousandths % 1000), 3);
}

template <class Real, class... Form>
void appendChars(std::string& text, Real value, Form... form) {
  if (std::isnan(value)) {
    text += "nan";
    return;
  }
  std::array<char, 32> buffer;
  const auto written = std::to_chars(buffer.data(), buffer.data() + buffer.size(), value, form...);
  text.append(buffer.data(), written.ptr);
}

template <class Real>
void appendEveryDigit(std::string& text, Real value) {
  constexpr int kDecimals = std::numeric_limits<Real>::max_digits10 - 1;
  appendChars(text, value, std::chars_format::scientific, kDecimals);
}

}  // namespace

PlainNumber longNumber(std::string_view text) {
  constexpr std::ptrdiff_t kMostDigits = 15;
  const char* const end = text.data() + text.size();
  const char* at = text.data();
  PlainNumber number;
  number.negative = at != end && *at == '-';
  if (number.negative) ++at;
  const char* const begin = at;
  const char* fraction = nullptr;
  std::uint64_t digits = 0;
  for (; at != end; ++at) {
    const auto digit = static_cast<unsigned>(*at - '0');
    if (digit <= 9) {
      digits = digits * 10 + digit;
    } else if (*at == '.' && fraction == nullptr) {
      fraction = at + 1;
    } else {
      break;
    }
  }
  const std::ptrdiff_t count = at - begin - (fraction != nullptr ? 1 : 0);
  if (count == 0 || count > kMostDigits || (at != end && *at != ',')) return {};
  number.digits = static_cast<std::int64_t>(digits);
  number.decimals = fraction != nullptr ? static_cast<std::size_t>(at - fraction) : 0;
  number.length = static_cast<std::size_t>(at - text.data());
  return number;
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

double leadingNumber(std::string_view text) {
  text = trimmed(text);
  std::string joined;
  if (text.find(' ') != std::string_view::npos) {
    std::copy_if(text.begin(), text.end(), std::back_inserter(joined),
                 [](char c) { return c != ' '; });
    text = joined;
  }
  const Extent number = extentOf(text);
  return number.end != nullptr ? realFrom<double>(number) : 0;
}

char* putNumber(char* at, double value) {
  char* const end = putThousandths(at, value);
  return end != nullptr ? end : putReal(at, value, kDoubleDigits);
}

char* putNumber(char* at, float value) { return putReal(at, value, kSingleDigits); }

char* putNumber(char* at, std::int32_t value) {
  return std::to_chars(at, at + kIntegerSize, value).ptr;
}

namespace {

template <class Number>
void appendAny(std::string& text, Number value) {
  std::array<char, kNumberSize> buffer;
  text.append(buffer.data(), putNumber(buffer.data(), value));
}

}  // namespace

void appendNumber(std::string& text, double value) { appendAny(text, value); }
void appendNumber(std::string& text, float value) { appendAny(text, value); }
void appendNumber(std::string& text, std::int32_t value) { appendAny(text, value); }

void appendExact(std::string& text, double value) { appendChars(text, value); }
void appendExact(std::string& text, float value) { appendChars(text, value); }
std::string exactText(double value) {
  std::string text;
  appendExact(text, value);
  return text;
}
void appendAllDigits(std::string& text, double value) { appendEveryDigit(text, value); }
void appendAllDigits(std::string& text, float value) { appendEveryDigit(text, value); }

std::int64_t scaledBy(double value, double scale) {
  const double size = std::abs(value);
  const double below = std::floor(size * scale);
  // The fused result is rounded only once: its sign shows on which side of the half the exact
  // product is.
  const bool up = std::fma(size, scale, -(below + 0.5)) >= 0;
  const auto whole = static_cast<std::int64_t>(below) + (up ? 1 : 0);
  return value < 0 ? -whole : whole;
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

char* putFraction(char* at, float value) {
  if (value == std::floor(value)) return at;
  if (value >= 1 && value < 1e6F) return putDecimals(at, value);
  Buffer buffer;
  int exponent = 0;
  const std::string_view digits = significantDigits(value, kSingleDigits, buffer, exponent);
  Buffer plain;
  char* const end = putFixed(plain.data(), digits, exponent);
  return std::copy(std::find(plain.data(), end, '.'), end, at);
}

}  // namespace aq
