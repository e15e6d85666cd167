#pragma once

#include <cstdint>
#include <limits>

#include "aq/text/level_code.h"
#include "aq/text/word.h"

// A level as text, right-aligned in a word of eight bytes, with the first character in the lowest
// byte.

namespace aq {

inline constexpr std::int32_t kLargestCode = std::numeric_limits<LevelCode>::max();

/// Zero in columns, with its leading zeros.
inline constexpr std::uint64_t kZeroWord = wordOfText("00000.00");

inline constexpr std::int32_t kNoHundredths = -1;

/// The hundredths of a level below 1000 dB in eight columns: five for the whole part, in which
/// blanks may replace leading zeros, then a point and two digits. `kNoHundredths` for any other
/// text.
inline std::int32_t hundredthsInColumns(std::uint64_t word) {
  constexpr std::uint64_t kWhole = 0x1010101010U;  // a bit that "0" has but a blank does not
  constexpr std::uint64_t kDigits = 0x0606000606060606U;
  constexpr std::uint64_t kStrange = 0xF0F0FFF0F0F0F0F0U;
  constexpr std::uint64_t kAlwaysBlank = 0xFFFFU;
  static_assert(('0' ^ ' ') == 0x10);
  const std::uint64_t blanks = ~word & kWhole;
  const std::uint64_t digits = (word | kWhole) ^ kZeroWord;
  const std::uint64_t notBlank = digits & (blanks - (blanks >> 4));  // such as "(" for "8"
  const std::uint64_t strange = ((digits + kDigits) | digits) & kStrange;
  const std::uint64_t blankAfterDigit = blanks & ~(blanks << 8 | 0x10U);
  if ((strange | notBlank | blankAfterDigit | (digits & kAlwaysBlank)) != 0) return kNoHundredths;
  const std::uint64_t pairs = digits * 10 + (digits >> 8);
  return byteOf(digits, 2) * 10000 + byteOf(pairs, 3) * 100 + byteOf(pairs, 6);
}

}  // namespace aq
