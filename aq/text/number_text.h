#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

#include "aq/core/export.h"

// Numbers as text and back. The decimal point is always ".", whatever the locale, and a blank is a
// space.

namespace aq {

/// `text` without its outer blanks.
[[nodiscard]] inline std::string_view trimmed(std::string_view text) {
  while (!text.empty() && text.front() == ' ') text.remove_prefix(1);
  while (!text.empty() && text.back() == ' ') text.remove_suffix(1);
  return text;
}

/// `text` with the letters a to z in upper case; other bytes unchanged.
[[nodiscard]] AQ_API std::string upperCased(std::string_view text);

// The number that all of `text` represents, outer blanks aside: an optional sign, digits with an
// optional point and fraction, and an optional exponent; for integers, an optional sign and digits
// only. Rounded correctly. Throws `TypeMismatch` for any other text, `Overflow` outside the type's
// range.
[[nodiscard]] AQ_API double doubleFrom(std::string_view text);
[[nodiscard]] AQ_API float singleFrom(std::string_view text);
[[nodiscard]] AQ_API std::int32_t int32From(std::string_view text);
[[nodiscard]] AQ_API std::int16_t int16From(std::string_view text);
[[nodiscard]] AQ_API std::uint8_t byteFrom(std::string_view text);

/// The number at the start of `text`, ignoring all blanks, up to the first character that cannot
/// continue a number; 0 if there is no number. Throws `Overflow` outside the range of a double.
[[nodiscard]] AQ_API double leadingNumber(std::string_view text);

// Default text: at most 15 (double) or 7 (single) significant digits, 0.5 instead of .5, no
// exponent from 1e-7 to below 1e15 (1e7 for singles). Throws `InvalidValue` if not finite.
AQ_API void appendNumber(std::string& text, double value);
AQ_API void appendNumber(std::string& text, float value);
AQ_API void appendNumber(std::string& text, std::int32_t value);
[[nodiscard]] AQ_API std::string numberText(double value);
[[nodiscard]] AQ_API std::string numberText(float value);
[[nodiscard]] AQ_API std::string numberText(std::int32_t value);

// Text that reads back as exactly this value: `appendExact` and `exactText` write the shortest,
// `appendAllDigits` all digits and an exponent, as in 4.58634312e-07. Values that are not finite
// give nan, inf or -inf.
AQ_API void appendExact(std::string& text, double value);
AQ_API void appendExact(std::string& text, float value);
[[nodiscard]] AQ_API std::string exactText(double value);
AQ_API void appendAllDigits(std::string& text, double value);
AQ_API void appendAllDigits(std::string& text, float value);

/// `value` times `scale`, a power of ten, rounded to an integer, exact halves away from zero.
/// `value` is finite and the product is below 2^52.
[[nodiscard]] AQ_API std::int64_t scaledBy(double value, double scale);

// Write the default text in place, for rows of many numbers. Each returns the end of its text; `at`
// must have room for the longest text.
inline constexpr std::size_t kIntegerSize = 11;   // a sign and ten digits
inline constexpr std::size_t kNumberSize = 24;    // a sign, "0.", six zeros and 15 digits
inline constexpr std::size_t kFractionSize = 64;  // a point and the digits of the smallest single
[[nodiscard]] AQ_API char* putNumber(char* at, std::int32_t value);
[[nodiscard]] AQ_API char* putNumber(char* at, double value);
[[nodiscard]] AQ_API char* putNumber(char* at, float value);

/// Writes the point and the fraction of `value` rounded to 7 significant digits; nothing if no
/// fraction remains. `value` is finite and not negative.
[[nodiscard]] AQ_API char* putFraction(char* at, float value);

}  // namespace aq
