#include "aq/text/level_code.h"

#include <algorithm>
#include <array>
#include <bit>
#include <charconv>
#include <cmath>
#include <cstdlib>
#include <cstring>

#include "aq/core/error.h"
#include "aq/detail/lanes.h"
#include "aq/text/level_word.h"

namespace aq {
namespace {

// Writing.

/// The digits of a number from 0 to 999 without leading zeros (no digit for 0), then a point;
/// `size` is the number of these characters.
struct WholeText {
  std::array<char, 4> text{};
  std::uint32_t size = 0;
};
constexpr auto kWholeTexts = [] {
  std::array<WholeText, 1000> all{};
  for (std::size_t number = 0; number < all.size(); ++number) {
    WholeText& part = all[number];
    for (std::size_t scale = 100; scale != 0; scale /= 10) {
      if (number < scale) continue;
      part.text[part.size++] = static_cast<char>('0' + number / scale % 10);
    }
    part.text[part.size++] = '.';
  }
  return all;
}();

/// Two digits and a comma.
using DecimalText = std::array<char, 4>;
constexpr auto kDecimalTexts = [] {
  std::array<DecimalText, 100> all{};
  for (std::size_t number = 0; number < all.size(); ++number) {
    all[number] = {static_cast<char>('0' + number / 10), static_cast<char>('0' + number % 10), ','};
  }
  return all;
}();

constexpr std::size_t kLongestQuick = 8;   // a sign, three digits, a point, two decimals, a comma
constexpr std::int32_t kQuickEnd = 99999;  // below it: at most three digits before the point

/// Writes a level given in hundredths, below `kQuickEnd` in magnitude, and a comma. Returns the
/// position after the comma; may overwrite the character there.
char* writeHundredths(char* at, std::int32_t hundredths) {
  *at = '-';
  at += hundredths < 0 ? 1 : 0;
  const auto size = static_cast<std::uint32_t>(std::abs(hundredths));
  const WholeText& whole = kWholeTexts[size / 100];
  std::memcpy(at, whole.text.data(), whole.text.size());
  at += whole.size;
  std::memcpy(at, kDecimalTexts[size % 100].data(), sizeof(DecimalText));
  return at + 3;
}

constexpr std::int32_t kDoubtful = kQuickEnd;

/// The hundredths to which a level rounds; `kDoubtful` where the exact digits have to decide
/// and for levels too large for `writeHundredths`.
std::int32_t quickHundredths(double level) {
  constexpr double kNearHalf = 1e-3;  // 100 times the level is off by less than 1e-9
  const double size = std::abs(level) * 100;
  if (!(size < kQuickEnd - 1)) return kDoubtful;
  const auto below = static_cast<std::int32_t>(size);
  const double above = size - below;
  if (std::abs(above - 0.5) < kNearHalf) return kDoubtful;
  const std::int32_t hundredths = below + (above > 0.5 ? 1 : 0);
  return level < 0 ? -hundredths : hundredths;
}

std::int32_t quickHundredths(LevelCode code) { return code == kInvalidCode ? kDoubtful : code; }

double exactly(double level) { return level; }
double exactly(LevelCode code) { return levelOf(code); }

/// Whether `level` lies exactly halfway between two hundredths: an odd number of eighths.
bool isHalfway(double level) { return std::fmod(std::abs(level) * 8, 2) == 1; }

/// Appends any finite level, rounding its exact decimal expansion.
void appendExactly(std::string& text, double level) {
  if (!std::isfinite(level)) {
    throw Error(ErrorCode::InvalidValue,
                "a level that is not a finite number cannot be written as text");
  }
  const bool halfway = isHalfway(level);
  std::array<char, 400> buffer;  // a double in fixed notation, with room to spare
  const auto written = std::to_chars(buffer.data(), buffer.data() + buffer.size(), std::abs(level),
                                     std::chars_format::fixed, halfway ? 3 : 2);
  char* end = written.ptr;
  if (halfway) {
    // .125, .375, .625 or .875: rounding up needs no carry; to_chars would round to the even digit.
    --end;
    ++end[-1];
  }
  std::string_view digits(buffer.data(), static_cast<std::size_t>(end - buffer.data()));
  if (digits.starts_with("0.")) digits.remove_prefix(1);
  if (level < 0 && digits != ".00") text += '-';
  text += digits;
}

template <class Level>
void appendAll(std::string& text, std::span<const Level> levels) {
  if (levels.empty()) return;
  std::array<char, 32 * kLongestQuick> buffer;
  const char* const full = buffer.data() + buffer.size() - kLongestQuick;
  char* at = buffer.data();
  for (const Level level : levels) {
    const std::int32_t hundredths = quickHundredths(level);
    if (hundredths != kDoubtful) at = writeHundredths(at, hundredths);
    if (hundredths != kDoubtful && at < full) continue;
    text.append(buffer.data(), at);
    at = buffer.data();
    if (hundredths != kDoubtful) continue;
    appendExactly(text, exactly(level));
    *at++ = ',';
  }
  text.append(buffer.data(), at);
  text.pop_back();  // the last comma
}

// In columns.

constexpr std::string_view kInvalidInColumns = " 9999.00";

/// Every whole part that a code can have, with its sign, in the columns before the decimals.
constexpr std::size_t kWholeParts = kLargestCode / 100 + 1;
using WholeInColumns = std::array<char, kLevelColumns>;
constexpr auto kWholesInColumns = [] {
  std::array<std::array<WholeInColumns, kWholeParts>, 2> all{};
  for (std::size_t part = 0; part < 2 * kWholeParts; ++part) {
    const bool negative = part >= kWholeParts;
    WholeInColumns& text = all[negative ? 1 : 0][part % kWholeParts];
    text = {' ', ' ', ' ', ' ', ' ', '.', '0', '0'};
    std::size_t place = 5;
    std::size_t left = part % kWholeParts;
    do {
      text[--place] = static_cast<char>('0' + left % 10);
      left /= 10;
    } while (left != 0);
    if (negative) text[--place] = '-';
  }
  return all;
}();

}  // namespace

std::size_t codesInColumns(std::string_view text, std::span<LevelCode> codes) {
  if constexpr (std::endian::native != std::endian::little) return 0;
  const std::size_t most = std::min(codes.size(), text.size() / kLevelColumns);
  for (std::size_t place = 0; place < most; ++place) {
    std::uint64_t word = 0;
    std::memcpy(&word, text.data() + place * kLevelColumns, kLevelColumns);
    const std::int32_t hundredths = hundredthsInColumns(word);
    if (hundredths >= 0 && hundredths <= kLargestCode) {
      codes[place] = static_cast<LevelCode>(hundredths);
    } else if (word == wordOfText(kInvalidInColumns)) {
      codes[place] = kInvalidCode;
    } else {
      return place;
    }
  }
  return most;
}

void putInColumns(char* at, LevelCode code) {
  if (code == kInvalidCode) {
    std::memcpy(at, kInvalidInColumns.data(), kLevelColumns);
    return;
  }
  const auto size = static_cast<std::uint32_t>(std::abs(code));
  std::memcpy(at, kWholesInColumns[code < 0 ? 1 : 0][size / 100].data(), kLevelColumns);
  at[6] = static_cast<char>('0' + size / 10 % 10);
  at[7] = static_cast<char>('0' + size % 10);
}

void copyLevels(std::span<const LevelCode> codes, double* levels) {
  LevelCode lowest = 0;
  std::size_t i = 0;
  for (; i + kLanes <= codes.size(); i += kLanes) {
    putLanes(levels + i, lanesOf([&](std::size_t lane) {
                           lowest = std::min(lowest, codes[i + lane]);
                           return static_cast<double>(codes[i + lane]);
                         }) / 100.0);
  }
  for (; i < codes.size(); ++i) levels[i] = levelOf(codes[i]);
  if (lowest != kInvalidCode) return;
  for (i = 0; i < codes.size(); ++i) {
    if (codes[i] == kInvalidCode) levels[i] = kInvalidLevel;
  }
}

std::optional<LevelCode> codeOf(double level) {
  if (level == kInvalidLevel) return kInvalidCode;
  if (!(std::abs(level) * 100 < kLargestCode + 0.5)) return std::nullopt;
  const auto code = static_cast<LevelCode>(std::nearbyint(level * 100));
  if (levelOf(code) != level || (level == 0 && std::signbit(level))) return std::nullopt;
  return code;
}

void appendLevel(std::string& text, double level) { appendLevels(text, {&level, 1}); }

void appendLevels(std::string& text, std::span<const double> levels) { appendAll(text, levels); }

void appendLevels(std::string& text, std::span<const LevelCode> codes) { appendAll(text, codes); }

}  // namespace aq
