#pragma once

#include <bit>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <optional>
#include <span>
#include <string>
#include <type_traits>
#include <utility>

namespace aq::sdf {

/// The big-endian number at `at`.
template <class Number>
[[nodiscard]] Number numberAt(const char* at) {
  using Bits = std::conditional_t<
      sizeof(Number) == 8, std::uint64_t,
      std::conditional_t<sizeof(Number) == 4, std::uint32_t,
                         std::conditional_t<sizeof(Number) == 2, std::uint16_t, std::uint8_t>>>;
  // A single expression, which compilers turn into a single load.
  const auto bits = [at]<std::size_t... i>(std::index_sequence<i...>) {
    return static_cast<Bits>((
        (std::uint64_t{static_cast<unsigned char>(at[i])} << 8U * (sizeof(Number) - 1 - i)) | ...));
  }
  (std::make_index_sequence<sizeof(Number)>());
  return std::bit_cast<Number>(bits);
}

/// Writes a number as `numberAt` reads it.
template <class Number>
void putNumber(char* at, Number number) {
  using Bits = std::conditional_t<std::is_same_v<Number, double>, std::uint64_t, std::uint32_t>;
  if constexpr (std::is_floating_point_v<Number>) {
    const auto bits = std::bit_cast<Bits>(number);
    for (std::size_t i = 0; i < sizeof(bits); ++i) {
      at[i] = static_cast<char>(static_cast<unsigned char>(bits >> (8U * (sizeof(bits) - 1 - i))));
    }
  } else {
    for (std::size_t i = 0; i < sizeof(number); ++i) {
      at[i] = static_cast<char>(static_cast<unsigned char>(static_cast<std::uint64_t>(number) >>
                                                           (8U * (sizeof(number) - 1 - i))));
    }
  }
}

/// How the values of a trace, an axis or a scan variable are stored.
enum class NumberType : std::int16_t { Short = 1, Long = 2, Float = 3, Double = 4 };

/// The size of one number in bytes.
[[nodiscard]] constexpr std::size_t sizeOf(NumberType type) {
  return type == NumberType::Short ? 2 : type == NumberType::Double ? 8 : 4;
}

/// A view of numbers stored as in a binary file; the bytes are not copied.
struct Numbers {
  const char* at = nullptr;
  std::size_t count = 0;
  NumberType type = NumberType::Double;
  std::size_t step = 1;  ///< every `step`-th number is used

  [[nodiscard]] double operator[](std::size_t place) const {
    double number = 0;
    Numbers{at + place * step * sizeOf(type), 1, type}.copyTo({&number, 1});
    return number;
  }

  /// Fills `numbers`, which must not have more elements than there are stored values.
  void copyTo(std::span<double> numbers) const {
    switch (type) {
      case NumberType::Short: return copy<std::int16_t>(numbers);
      case NumberType::Long: return copy<std::int32_t>(numbers);
      case NumberType::Float: return copy<float>(numbers);
      case NumberType::Double: return copy<double>(numbers);
    }
  }

 private:
  template <class Number>
  void copy(std::span<double> numbers) const {
    const char* from = at;
    for (double& number : numbers) {
      number = static_cast<double>(numberAt<Number>(from));
      from += sizeof(Number) * step;
    }
  }
};

/// The nearest float; infinite beyond the range of floats.
[[nodiscard]] inline float floatOf(double number) {
  constexpr float kMost = std::numeric_limits<float>::max();
  constexpr double kNone = 0x1.ffffffp127;  // halfway between kMost and 2^128, to which it rounds
  const double size = std::abs(number);
  if (!(size > static_cast<double>(kMost))) return static_cast<float>(number);
  const float most = size < kNone ? kMost : std::numeric_limits<float>::infinity();
  return number < 0 ? -most : most;
}

// Counts in a file may have any value: a product or sum that exceeds 64 bits becomes the largest
// number, which is above the size of any file.
[[nodiscard]] constexpr std::uint64_t times(std::uint64_t a, std::uint64_t b) {
  constexpr std::uint64_t kMost = std::numeric_limits<std::uint64_t>::max();
  return a != 0 && b > kMost / a ? kMost : a * b;
}
[[nodiscard]] constexpr std::uint64_t plus(std::uint64_t a, std::uint64_t b) {
  return a + b < a ? std::numeric_limits<std::uint64_t>::max() : a + b;
}

}  // namespace aq::sdf
