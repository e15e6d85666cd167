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

// Converts levels to text and back. Nearly every level is a whole number of hundredths of a
// decibel, so it is kept in memory as a short integer.

namespace aq {

/// Hundredths of a decibel up to 327.67 dB either way, or `kInvalidCode`.
using LevelCode = std::int16_t;

/// The level of a band whose measurement is not valid, and its code.
inline constexpr double kInvalidLevel{AQ_INVALID_LEVEL};
inline constexpr LevelCode kInvalidCode = std::numeric_limits<LevelCode>::min();

/// The level of a code, correctly rounded: the same double that its text gives.
[[nodiscard]] constexpr double levelOf(LevelCode code) {
  return code == kInvalidCode ? kInvalidLevel : code / 100.0;
}

/// Stores the `levelOf` of each code, starting at `levels`.
AQ_API void copyLevels(std::span<const LevelCode> codes, double* levels);

/// The code that `levelOf` turns into exactly this level; nothing if there is none.
[[nodiscard]] AQ_API std::optional<LevelCode> codeOf(double level);

/// Takes levels in their written form (an optional minus sign, optional digits, a point and two
/// decimals, separated by ",") from the start of `text`, until `codes` is full or a field follows
/// that has another form or a level too large for a code; `doubleFrom` may still accept it. The
/// levels taken equal those that `doubleFrom` gives.
[[nodiscard]] AQ_API FieldsTaken levelsAtFront(std::string_view text, std::span<LevelCode> codes);

inline constexpr std::size_t kLevelColumns = 8;

/// Reads levels of at least 0 from eight-character columns, right-aligned with two decimals, and
/// returns how many. Stops when `codes` is full, the text ends, or a column has another form (such
/// as eight blanks) or a level too large for a code. On a big-endian machine it reads none.
[[nodiscard]] AQ_API std::size_t codesInColumns(std::string_view text, std::span<LevelCode> codes);

/// Writes a level into eight columns, right-aligned with two decimals.
AQ_API void putInColumns(char* at, LevelCode code);

/// Appends `level` as levels are written: two decimals, no zero before the point (.50, -.25), exact
/// halves away from zero, no sign on a level that rounds to zero. Throws `InvalidValue` for a level
/// that is not finite.
AQ_API void appendLevel(std::string& text, double level);

// Append several levels, with "," between them.
AQ_API void appendLevels(std::string& text, std::span<const double> levels);
AQ_API void appendLevels(std::string& text, std::span<const LevelCode> codes);

}  // namespace aq
