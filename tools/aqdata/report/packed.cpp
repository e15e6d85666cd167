#include "tools/aqdata/report/packed.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <cstdint>
#include <limits>
#include <optional>

namespace aqdata::report {
namespace {

constexpr double kMost = std::numeric_limits<std::int32_t>::max();

template <class Unsigned>
void putLittleEndian(std::string& bytes, Unsigned value) {
  for (std::size_t i = 0; i < sizeof value; ++i) {
    bytes += static_cast<char>(static_cast<unsigned char>(value & 0xffU));
    value = static_cast<Unsigned>(value >> 8U);
  }
}

bool areSteps(std::span<const double> numbers, double step, double most, bool exact) {
  constexpr double kRounding = 1e-9;
  return std::all_of(numbers.begin(), numbers.end(), [&](double number) {
    if (std::isnan(number)) return true;
    const double whole = std::round(number / step);
    return std::abs(whole) <= most && (!exact || std::abs(whole * step - number) <= kRounding);
  });
}

/// The difference between consecutive numbers, in steps; empty if it is not constant, or for fewer
/// than three numbers.
std::optional<double> differenceOf(std::span<const double> numbers, double step) {
  if (numbers.size() < 3) return std::nullopt;
  const auto difference = [&](std::size_t i) {
    return std::round(numbers[i] / step) - std::round(numbers[i - 1] / step);
  };
  const double first = difference(1);
  for (std::size_t i = 2; i < numbers.size(); ++i) {
    if (difference(i) != first) return std::nullopt;  // also for NaN
  }
  return first;
}

/// Integers in units of the step; the lowest integer means no value.
template <class Integer>
std::string asIntegers(std::span<const double> numbers, double step) {
  using Unsigned = std::make_unsigned_t<Integer>;
  std::string bytes;
  bytes.reserve(numbers.size() * sizeof(Integer));
  for (const double number : numbers) {
    const Integer whole = std::isnan(number) ? std::numeric_limits<Integer>::min()
                                             : static_cast<Integer>(std::round(number / step));
    putLittleEndian(bytes, static_cast<Unsigned>(whole));
  }
  return bytes;
}

std::string asSingles(std::span<const double> numbers) {
  std::string bytes;
  bytes.reserve(numbers.size() * sizeof(float));
  for (const double number : numbers) {
    putLittleEndian(bytes, std::bit_cast<std::uint32_t>(static_cast<float>(number)));
  }
  return bytes;
}

Json packedAs(const char* type, double step, std::string_view bytes) {
  return {{"type", type}, {"step", step}, {"data", base64(bytes)}};
}

}  // namespace

std::string base64(std::string_view bytes) {
  constexpr std::string_view kDigits =
      "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
  std::string text;
  text.reserve((bytes.size() + 2) / 3 * 4);
  for (std::size_t i = 0; i < bytes.size(); i += 3) {
    const std::size_t count = std::min<std::size_t>(3, bytes.size() - i);
    std::uint32_t group = 0;
    for (std::size_t k = 0; k < 3; ++k) {
      group = group << 8U | (k < count ? static_cast<unsigned char>(bytes[i + k]) : 0U);
    }
    for (std::size_t k = 0; k < 4; ++k) {
      text += k <= count ? kDigits[group >> (18U - 6U * k) & 0x3fU] : '=';
    }
  }
  return text;
}

Json packed(std::span<const double> numbers, double step, bool exact) {
  static_assert(std::numeric_limits<float>::is_iec559);
  if (const auto by = differenceOf(numbers, step); by && areSteps(numbers, step, kMost, exact)) {
    return {{"type", "even"},
            {"step", step},
            {"first", std::round(numbers.front() / step)},
            {"by", *by},
            {"count", numbers.size()}};
  }
  if (areSteps(numbers, step, std::numeric_limits<std::int16_t>::max(), exact)) {
    return packedAs("i16", step, asIntegers<std::int16_t>(numbers, step));
  }
  if (areSteps(numbers, step, kMost, exact)) {
    return packedAs("i32", step, asIntegers<std::int32_t>(numbers, step));
  }
  return packedAs("f32", 1, asSingles(numbers));
}

Json packedQuarters(std::string_view numbers) {
  std::string bytes((numbers.size() + 3) / 4, '\0');
  for (std::size_t i = 0; i < numbers.size(); ++i) {
    const unsigned quarter = static_cast<unsigned char>(numbers[i]) & 3U;
    char& byte = bytes[i / 4];
    byte = static_cast<char>(static_cast<unsigned char>(byte) | quarter << i % 4 * 2);
  }
  return packedAs("u2", 1, bytes);
}

}  // namespace aqdata::report
