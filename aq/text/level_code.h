#pragma once

#include <cstddef>
#include <cstdint>
#include <limits>
#include <optional>
#include <span>
#include <string>
#include <string_view>

#include "aq/core/enumerations.h"
#include "aq/core/export.h"
#include "aq/text/fields_taken.h"

// Levels as text and back. Nearly every level is a whole number of hundredths of a decibel, so
// that a short integer stands for it on the way and in memory.

namespace aq {

/// Hundredths of a decibel up to 327.67 dB either way, or `kInvalidCode`.
using LevelCode = std::int16_t;

/// The level of a band whose measurement is not valid, and the code that stands for it.
inline constexpr double kInvalidLevel{AQ_INVALID_LEVEL};
inline constexpr LevelCode kInvalidCode = std::numeric_limits<LevelCode>::min();

/// The level behind a code, correctly rounded: the same double as its text gives.
[[nodiscard]] constexpr double levelOf(LevelCode code) {
  return code == kInvalidCode ? kInvalidLevel : code / 100.0;
}

/// The code that `levelOf` turns into just this level; nothing when there is none.
[[nodiscard]] AQ_API std::optional<LevelCode> codeOf(double level);

/// Takes levels in the form in which they are written, digits, a point and two decimals with ","
/// between them, from the front of `text`, until `codes` is full or another form comes, which
/// `doubleFrom` may still know. The values are the same.
[[nodiscard]] AQ_API FieldsTaken levelsAtFront(std::string_view text, std::span<LevelCode> codes);

inline constexpr std::size_t kLevelColumns = 8;

/// Takes levels in columns of eight, right-aligned with two decimals, from the front of `text`
/// until `codes` is full or another form comes, as eight blanks; gives how many.
[[nodiscard]] AQ_API std::size_t codesInColumns(std::string_view text, std::span<LevelCode> codes);

/// Writes a level into eight columns as they are read there.
AQ_API void putInColumns(char* at, LevelCode code);

/// Appends `level` as levels are written: two decimals, no zero before the point (.50, -.25),
/// exact halves away from zero, no sign on what rounds to zero. Throws `InvalidValue` when not
/// finite.
AQ_API void appendLevel(std::string& text, double level);

// As above, with "," between the levels.
AQ_API void appendLevels(std::string& text, std::span<const double> levels);
AQ_API void appendLevels(std::string& text, std::span<const LevelCode> codes);

}  // namespace aq
