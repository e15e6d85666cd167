#pragma once

#include <cstdint>
#include <vector>

#include "aq/text/level_code.h"

namespace aq {

/// A function of the level, computed in advance for the levels that have codes from 0 to 128 dB.
template <class Function>
class LevelTable {
 public:
  explicit LevelTable(const Function& function) : function_(function) {
    values_.reserve(kCodes);
    for (LevelCode code = 0; code < kCodes; ++code) values_.push_back(function(levelOf(code)));
  }

  /// 0 for `kInvalidCode`.
  [[nodiscard]] double of(LevelCode code) const {
    const auto at = static_cast<std::uint16_t>(code);  // out of the table if negative
    return at < kCodes ? values_[at] : outside(code);
  }

 private:
  static constexpr LevelCode kCodes = 12801;

  [[nodiscard]] double outside(LevelCode code) const {
    return code == kInvalidCode ? 0 : function_(levelOf(code));
  }

  Function function_;
  std::vector<double> values_;
};

}  // namespace aq
