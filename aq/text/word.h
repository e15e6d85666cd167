#pragma once

#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string_view>
#include <type_traits>

// Eight characters of text as one 64-bit word, the first in the lowest byte.

namespace aq {

inline constexpr std::size_t kWordBytes = sizeof(std::uint64_t);

/// The word of the first eight characters of `text`, which must have at least eight.
[[nodiscard]] constexpr std::uint64_t wordOfText(std::string_view text) {
  std::uint64_t word = 0;
  if (std::endian::native == std::endian::little && !std::is_constant_evaluated()) {
    std::memcpy(&word, text.data(), sizeof word);
    return word;
  }
  for (std::size_t place = kWordBytes; place-- > 0;) {
    word = word << 8 | static_cast<unsigned char>(text[place]);
  }
  return word;
}

[[nodiscard]] constexpr std::int32_t byteOf(std::uint64_t word, unsigned place) {
  return static_cast<std::uint8_t>(word >> (8 * place));
}

/// The word with this byte in all eight positions.
[[nodiscard]] constexpr std::uint64_t eightTimes(char byte) {
  return 0x0101010101010101U * static_cast<unsigned char>(byte);
}

/// A word with the highest bit set in each byte of `word` that equals `byte`, and all other bits 0.
[[nodiscard]] constexpr std::uint64_t marksOf(char byte, std::uint64_t word) {
  constexpr std::uint64_t kLowBits = eightTimes('\x7F');
  const std::uint64_t zeroThere = word ^ eightTimes(byte);
  return ~(((zeroThere & kLowBits) + kLowBits) | zeroThere | kLowBits);
}

/// The index of the first byte that equals `byte`; 8 if none does.
[[nodiscard]] constexpr std::size_t firstPlaceOf(char byte, std::uint64_t word) {
  const std::uint64_t zeroThere = word ^ eightTimes(byte);
  // Marks the first zero byte, and perhaps others after it.
  const std::uint64_t marks = (zeroThere - eightTimes(1)) & ~zeroThere & eightTimes('\x80');
  return static_cast<std::size_t>(std::countr_zero(marks)) / 8;
}

/// Whether each byte is 0 to 9.
[[nodiscard]] constexpr bool areDigits(std::uint64_t bytes) {
  return (((bytes + eightTimes(0x80 - 10)) | bytes) & eightTimes('\x80')) == 0;
}

/// The number with these eight digits, each byte 0 to 9.
[[nodiscard]] constexpr std::uint32_t numberOfDigits(std::uint64_t digits) {
  digits = (digits * 10 + (digits >> 8)) & 0x00FF00FF00FF00FFU;
  digits = (digits * 100 + (digits >> 16)) & 0x0000FFFF0000FFFFU;
  return static_cast<std::uint32_t>(digits * 10000 + (digits >> 32));
}

}  // namespace aq
