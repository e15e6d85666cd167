#pragma once

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <string_view>

// The fast path for numbers in the form that files mostly use; `number_text.h` handles all forms.
// Inline, since a call would cost as much as the number.

namespace aq {

/// A number in plain form: an optional minus sign, up to 15 digits, an optional point.
struct PlainNumber {
  std::int64_t digits = 0;  // as one integer
  std::size_t decimals = 0;
  std::size_t length = 0;  // in characters; 0 if there is no such number
  bool negative = false;
};

/// The plain number that fills `text` up to its first comma or its end.
[[nodiscard]] inline PlainNumber plainNumber(std::string_view text) {
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
  constexpr int kLargest = std::numeric_limits<std::int16_t>::max();
  const std::size_t sign = text.starts_with('-') ? 1 : 0;
  const std::size_t most = std::min(text.size(), sign + kMostDigits);
  int value = 0;
  std::size_t at = sign;
  for (; at < most && text[at] >= '0' && text[at] <= '9'; ++at) value = value * 10 + text[at] - '0';
  const bool whole = at == text.size() || text[at] == ',';
  if (at == sign || !whole || value > kLargest) return {};
  return {static_cast<std::int16_t>(sign != 0 ? -value : value), at};
}

}  // namespace aq
