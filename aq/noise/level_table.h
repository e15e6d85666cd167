#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <span>

#include "aq/text/level_code.h"

namespace aq {

/// The number of codes in a table: those from 0 to 128 dB.
inline constexpr LevelCode kTableCodes = 12801;

/// Whether a table has all of these codes; checks four at a time.
[[nodiscard]] inline bool areInTable(std::span<const LevelCode> codes) {
  constexpr std::size_t kAtOnce = sizeof(std::uint64_t) / sizeof(LevelCode);
  constexpr std::uint64_t kEach = 0x0001000100010001;
  constexpr std::uint64_t kSign = 0x8000 * kEach;
  constexpr std::uint64_t kToSign = (0x8000 - kTableCodes) * kEach;  // makes larger codes negative
  std::uint64_t signs = 0;
  std::size_t i = 0;
  for (; i + kAtOnce <= codes.size(); i += kAtOnce) {
    std::uint64_t word;
    std::memcpy(&word, &codes[i], sizeof word);
    signs |= word | (word + kToSign);
  }
  for (; i < codes.size(); ++i) signs |= codes[i] < 0 || codes[i] >= kTableCodes ? kSign : 0;
  return (signs & kSign) == 0;
}

/// A function of the level, computed in advance for the codes from 0 to `kTableCodes` - 1.
template <class Function>
class LevelTable {
 public:
  explicit LevelTable(const Function& function) : function_(function) {
    for (LevelCode code = 0; code < kTableCodes; ++code)
      values_[at(code)] = function(levelOf(code));
  }

  /// The value for a code for which `areInTable` holds.
  [[nodiscard]] double operator[](LevelCode code) const { return values_[at(code)]; }

  /// The value for any code; 0 for `kInvalidCode`.
  [[nodiscard]] double of(LevelCode code) const {
    return at(code) < kTableCodes ? values_[at(code)] : outside(code);
  }

 private:
  static std::uint16_t at(LevelCode code) { return static_cast<std::uint16_t>(code); }

  [[nodiscard]] double outside(LevelCode code) const {
    return code == kInvalidCode ? 0 : function_(levelOf(code));
  }

  Function function_;
  std::array<double, kTableCodes> values_;
};

}  // namespace aq
