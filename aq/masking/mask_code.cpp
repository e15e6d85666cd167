#include "aq/masking/mask_code.h"

#include <array>
#include <bit>
#include <cstddef>
#include <cstring>
#include <string_view>

namespace aq {
namespace {

constexpr int kModes{kMaskModes.size()};
constexpr int kAdjustments{kMaskAdjustments.size()};
constexpr std::size_t kCodes = 1 + kMaskModes.size() * kMaskAdjustments.size();

AQ_Mask maskWith(int mode, int adjustment) {
  AQ_Mask mask;
  mask.MaskMode(static_cast<AQ_MASK_MODE>(mode));
  mask.AdjustMode(static_cast<AQ_MASK_ADJUST>(adjustment));
  return mask;
}

/// Two bytes as a 16-bit number in memory order, which indexes the tables below.
template <class Byte>
constexpr std::size_t indexOf(std::array<Byte, 2> bytes) {
  return std::bit_cast<std::uint16_t>(bytes);
}
std::size_t indexAt(const void* bytes) {
  std::uint16_t index = 0;
  std::memcpy(&index, bytes, sizeof index);
  return index;
}

constexpr MaskCode kNoLetters = 0x80;  // above all codes

/// The code of any two bytes; `kNoLetters` if they are not a mask. Reading touches only the entries
/// of valid masks, which take less than 1 KiB of cache.
constexpr auto kCodesOfLetters = [] {
  std::array<MaskCode, 1 << 16> codes{};
  codes.fill(kNoLetters);
  MaskCode code = kDefaultMaskCode;
  for (const char mode : kMaskModes) {
    for (const char adjustment : kMaskAdjustments)
      codes[indexOf(std::array{mode, adjustment})] = code++;
  }
  return codes;
}();

constexpr std::size_t kColumn = 3;  // two letters and a comma

/// The column of a code; zero bytes for `kNoMaskCode`.
constexpr std::array<char, kColumn> columnOf(std::size_t code) {
  if (code == kNoMaskCode) return {};
  const std::size_t pair = code - 1;
  return {kMaskModes[pair / kMaskAdjustments.size()],
          kMaskAdjustments[pair % kMaskAdjustments.size()], ','};
}

/// The two columns of a pair of codes, in a word that one store writes; the next pair overwrites
/// the two excess bytes. The first of these is 1 if a code is `kNoMaskCode`.
using TwoColumns = std::uint64_t;
constexpr TwoColumns kMissing = std::bit_cast<TwoColumns>(std::array<char, 8>{0, 0, 0, 0, 0, 0, 1});

constexpr auto kTwoColumns = [] {
  std::array<TwoColumns, kCodes << 8> table{};
  for (MaskCode first = 0; first < kCodes; ++first) {
    for (MaskCode second = 0; second < kCodes; ++second) {
      const auto one = columnOf(first);
      const auto two = columnOf(second);
      const char missing = first == kNoMaskCode || second == kNoMaskCode ? 1 : 0;
      const std::array columns = {one[0], one[1], one[2], two[0], two[1], two[2], missing, '\0'};
      table[indexOf(std::array{first, second})] = std::bit_cast<TwoColumns>(columns);
    }
  }
  return table;
}();

TwoColumns putTwo(char* at, const MaskCode* codes) {
  const TwoColumns columns = kTwoColumns[indexAt(codes)];
  std::memcpy(at, &columns, sizeof columns);
  return columns;
}

}  // namespace

MaskCode maskCodeOf(const AQ_Mask& mask) {
  const int mode = mask.MaskMode();
  const int adjustment = mask.AdjustMode();
  if (mode < 0 || mode >= kModes || adjustment < 0 || adjustment >= kAdjustments) {
    return kNoMaskCode;
  }
  return static_cast<MaskCode>(1 + mode * kAdjustments + adjustment);
}

AQ_Mask maskOf(MaskCode code) {
  const int pair = code == kNoMaskCode ? 0 : code - 1;
  return maskWith(pair / kAdjustments, pair % kAdjustments);
}

namespace {

/// Reads the code of one column; returns 0 only if the column has two known letters and a comma.
unsigned takeMask(const char* at, MaskCode& code) {
  code = kCodesOfLetters[indexAt(at)];
  return (code & unsigned{kNoLetters}) | static_cast<unsigned>(at[2] ^ ',');
}

}  // namespace

FieldsTaken masksAtFront(std::string_view text, std::span<MaskCode> codes) {
  const std::size_t most = std::min(codes.size(), text.size() / kColumn);
  const char* at = text.data();
  std::size_t count = 0;
  for (; most - count >= 4; count += 4, at += 4 * kColumn) {  // faster than one by one
    MaskCode* const to = &codes[count];
    const unsigned wrong = takeMask(at, to[0]) | takeMask(at + kColumn, to[1]) |
                           takeMask(at + 2 * kColumn, to[2]) | takeMask(at + 3 * kColumn, to[3]);
    if (wrong != 0) break;
  }
  for (; count < most && takeMask(at, codes[count]) == 0; ++count) at += kColumn;
  return {count, count * kColumn};
}

char* putMasks(char* at, std::span<const MaskCode> codes) {
  TwoColumns put = 0;
  std::size_t next = 0;
  for (; codes.size() - next >= 4; next += 4, at += 4 * kColumn) {  // faster than two by two
    put |= putTwo(at, &codes[next]) | putTwo(at + 2 * kColumn, &codes[next + 2]);
  }
  for (; next < codes.size(); ++next, at += kColumn) {
    const std::array<MaskCode, 2> last = {codes[next], kDefaultMaskCode};
    put |= putTwo(at, last.data());
  }
  return (put & kMissing) == 0 ? at : nullptr;
}

}  // namespace aq
