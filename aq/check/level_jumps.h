#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <vector>

#include "aq/check/reporter.h"

namespace aq {

// The range of plausible sound levels, in dB.
inline constexpr double kLowestLevel = -20;
inline constexpr double kHighestLevel = 200;

/// Finds single levels that are far from those of the records before and after. No sound drops by
/// more than 20 dB in one band for just half a second; a rise is reported only above 40 dB, since
/// it may be birdsong.
class LevelJumps {
 public:
  /// `firstField` is the field of band `low`.
  LevelJumps(std::int16_t low, std::size_t firstField, const Reporter& report)
      : low_(low), firstField_(firstField), report_(report) {}

  /// Takes the next record, whose first level is for `band`.
  void see(std::int16_t record, std::size_t line, std::int16_t band, std::vector<double> levels);

 private:
  struct Row {
    std::int16_t record = 0;
    std::size_t line = 0;
    std::int16_t band = 0;
    std::vector<double> levels = {};

    [[nodiscard]] bool precedes(const Row& next) const;
  };

  void compare(const Row& before, const Row& here, const Row& after) const;

  std::int16_t low_;
  std::size_t firstField_;
  const Reporter& report_;
  std::array<Row, 2> rows_;  // the last two records; line 0 until they are filled
};

}  // namespace aq
