#pragma once

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <string_view>

#include "aq/core/export.h"
#include "aq/text/word.h"

// The fast path for numbers in the form that files mostly use; `number_text.h` handles all forms.
// Inline, since a call would cost as much as converting the number. Up to eight characters are
// processed as one machine word.

namespace aq {

/// A number in plain form: an optional minus sign, 1 to 15 digits, an optional point.
struct PlainNumber {
  std::int64_t digits = 0;  // all digits as one integer
  std::size_t decimals = 0;
  std::size_t length = 0;  // in characters; 0 if there is no such number
  bool negative = false;
};

/// A field of up to eight characters, each XORed with '0', right-aligned in a word of zeros.
struct FieldWord {
  std::uint64_t bytes = 0;
  std::size_t length = 0;  // in characters; 0 if there is no such field
};

/// The field that fills `text` up to its first comma or its end.
[[nodiscard]] inline FieldWord fieldWord(std::string_view text) {
  std::uint64_t word = eightTimes(',');
  if (text.size() >= kWordBytes) {
    word = wordOfText(text);
  } else {
    for (std::size_t i = text.size(); i-- > 0;) {
      word = word << 8 | static_cast<unsigned char>(text[i]);
    }
  }
  const std::size_t length = firstPlaceOf(',', word);
  const bool isLonger = length == kWordBytes && text.size() > length && text[length] != ',';
  if (length == 0 || isLonger) return {};
  return {(word ^ eightTimes('0')) << (8 * (kWordBytes - length)), length};
}

/// Like `plainNumber`, but takes one character at a time, for fields that do not fit in a word.
[[nodiscard]] AQ_API PlainNumber longNumber(std::string_view text);

/// The plain number that fills `text` up to its first comma or its end.
[[nodiscard]] inline PlainNumber plainNumber(std::string_view text) {
  constexpr char kPoint = '.' ^ '0';
  const bool negative = text.starts_with('-');
  const FieldWord field = fieldWord(negative ? text.substr(1) : text);
  const std::size_t point = firstPlaceOf(kPoint, field.bytes);
  const std::size_t points = point < kWordBytes ? 1 : 0;
  std::uint64_t digits = field.bytes;
  if (points != 0) {  // the digits before the point move into its place
    const std::uint64_t after = ~std::uint64_t{0xFF} << (8 * point);
    digits = (digits & after) | (digits & ~(after >> 8)) << 8;
  }
  if (field.length <= points || !areDigits(digits)) return longNumber(text);
  return {.digits = numberOfDigits(digits),
          .decimals = points * (kWordBytes - 1 - point),
          .length = field.length + (negative ? 1 : 0),
          .negative = negative};
}

/// Integers up to `largest` and these powers of ten are exact, so one division rounds correctly.
template <class Real>
struct ExactRange;
template <>
struct ExactRange<double> {
  static constexpr std::int64_t largest = std::int64_t{1} << 53;
  static constexpr std::array powers{1e0, 1e1, 1e2,  1e3,  1e4,  1e5,  1e6,  1e7,
                                     1e8, 1e9, 1e10, 1e11, 1e12, 1e13, 1e14, 1e15};
};
template <>
struct ExactRange<float> {
  static constexpr std::int64_t largest = std::int64_t{1} << 24;
  static constexpr std::array powers{1e0F, 1e1F, 1e2F, 1e3F, 1e4F, 1e5F,
                                     1e6F, 1e7F, 1e8F, 1e9F, 1e10F};
};

/// Sets the number, correctly rounded; false, with the number unchanged, if the fast path cannot
/// convert it.
template <class Real>
[[nodiscard]] bool numberFrom(const PlainNumber& plain, Real& number) {
  using Exact = ExactRange<Real>;
  if (plain.length == 0 || plain.digits > Exact::largest ||
      plain.decimals >= Exact::powers.size()) {
    return false;
  }
  const Real size = static_cast<Real>(plain.digits) / Exact::powers[plain.decimals];
  number = plain.negative ? -size : size;
  return true;
}

/// A 16-bit integer in plain form: an optional minus sign and 1 to 5 digits.
struct PlainInteger {
  std::int16_t value = 0;
  std::size_t length = 0;  // in characters; 0 if there is no such integer
};

/// The plain integer that fills `text` up to its first comma or its end.
[[nodiscard]] inline PlainInteger plainInteger(std::string_view text) {
  constexpr std::size_t kMostDigits = 5;
  const bool negative = text.starts_with('-');
  const FieldWord field = fieldWord(negative ? text.substr(1) : text);
  const std::uint32_t digits = numberOfDigits(field.bytes);
  if (field.length - 1 >= kMostDigits || !areDigits(field.bytes) ||
      digits > std::numeric_limits<std::int16_t>::max()) {
    return {};
  }
  const auto number = static_cast<std::int16_t>(digits);
  return {static_cast<std::int16_t>(negative ? -number : number),
          field.length + (negative ? 1 : 0)};
}

}  // namespace aq
