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
// Inline, since a call would cost as much as the number. Up to eight characters form one word.

namespace aq {

/// A number in plain form: an optional minus sign, up to 15 digits, an optional point. Small enough
/// to be returned in registers.
struct PlainNumber {
  std::int64_t digits = 0;  // all digits as one integer
  std::uint8_t decimals = 0;
  std::uint8_t length = 0;  // in characters; 0 if there is no such number
  bool negative = false;
};

/// A field of up to eight characters, each less '0', right-aligned in a word of zeros.
struct FieldWord {
  std::uint64_t bytes = 0;
  std::size_t length = 0;  // in characters; 0 if there is no such field
};

/// The first `length` characters of a word, 1 to 8.
[[nodiscard]] inline FieldWord fieldOf(std::uint64_t word, std::size_t length) {
  return {(word ^ eightTimes('0')) << (8 * (kWordBytes - length)), length};
}

/// The field that fills `text` up to its first comma or its end.
[[nodiscard]] inline FieldWord fieldWord(std::string_view text) {
  const std::uint64_t word = text.size() >= kWordBytes
                                 ? wordOfText(text)
                                 : wordOfShortText(text) | eightTimes(',') << (8 * text.size());
  const std::size_t length = firstPlaceOf(',', word);
  const bool isLonger = length == kWordBytes && text.size() > length && text[length] != ',';
  if (length == 0 || isLonger) return {};
  return fieldOf(word, length);
}

/// The digits of a field that may have a point.
struct FieldDigits {
  std::uint32_t number = 0;  // all digits as one integer
  bool areDigits = false;    // false if the field has another character
  std::size_t points = 0;
  std::size_t decimals = 0;
};

[[nodiscard]] inline FieldDigits digitsOf(const FieldWord& field) {
  constexpr char kPoint = '.' ^ '0';
  const std::size_t point = firstPlaceOf(kPoint, field.bytes);
  const std::size_t points = point < kWordBytes ? 1 : 0;
  std::uint64_t digits = field.bytes;
  if (points != 0) {  // the digits before the point move into its place
    const std::uint64_t after = ~std::uint64_t{0xFF} << (8 * point);
    digits = (digits & after) | (digits & ~(after >> 8)) << 8;
  }
  return {.number = numberOfDigits(digits),
          .areDigits = areDigits(digits),
          .points = points,
          .decimals = points * (kWordBytes - 1 - point)};
}

/// A plain number of more than eight characters without its sign.
[[nodiscard]] AQ_API PlainNumber longNumber(std::string_view unsignedText, bool negative);

/// The plain number that fills `text` up to its first comma or its end.
[[nodiscard]] inline PlainNumber plainNumber(std::string_view text) {
  const bool negative = text.starts_with('-');
  if (negative) text.remove_prefix(1);
  const FieldWord field = fieldWord(text);
  const FieldDigits digits = digitsOf(field);
  if (field.length <= digits.points || !digits.areDigits) return longNumber(text, negative);
  return {.digits = digits.number,
          .decimals = static_cast<std::uint8_t>(digits.decimals),
          .length = static_cast<std::uint8_t>(field.length + (negative ? 1 : 0)),
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

/// Sets the number, correctly rounded; false when the fast path cannot tell.
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

/// A 16-bit integer in plain form: an optional minus sign and up to five digits.
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
