#include <algorithm>
#include <array>
#include <bit>
#include <cstring>

#include "aq/text/level_code.h"
#include "aq/text/level_word.h"
#if defined(__SSE2__) || defined(_M_X64)
#include <emmintrin.h>
#define AQ_HAS_SSE2
#endif

// Levels with "," between them. Each may have one, two or three whole digits, so the ends of all
// fields are found first, and the levels are taken in groups without a branch on their width.

namespace aq {
namespace {

constexpr std::size_t kFieldsAtOnce = 64;
constexpr std::size_t kScanned = 64;
constexpr std::size_t kLongestText = kFieldsAtOnce * (kLevelColumns + 1);  // fits levels

/// Where each field ends, from the start of the first.
using FieldEnds = std::array<std::uint16_t, kFieldsAtOnce + kScanned>;

/// Finds up to `most` fields; returns how many.
std::size_t findEnds(std::string_view text, std::size_t most, FieldEnds& ends) {
  std::size_t count = 0;
  for (std::size_t from = 0; from <= text.size() && count < most; from = ends[count - 1] + 1U) {
    ends[count++] = static_cast<std::uint16_t>(std::min(text.find(',', from), text.size()));
  }
  return count;
}

constexpr std::size_t kShortest = 3;  // a point and two decimals
constexpr std::size_t kLongestLevel = 6;

#ifdef AQ_HAS_SSE2  // in every build for 64-bit x86

constexpr std::size_t kVector = sizeof(__m128i);

/// A bit for every comma among sixteen bytes.
std::uint64_t commasAt(const char* at) {
  const __m128i bytes = _mm_loadu_si128(reinterpret_cast<const __m128i*>(at));
  return static_cast<std::uint16_t>(_mm_movemask_epi8(_mm_cmpeq_epi8(bytes, _mm_set1_epi8(','))));
}

/// A bit for every comma in the block at `from`, and for the end of the text, which has sixteen
/// bytes or more.
std::uint64_t endsInBlock(std::string_view text, std::size_t from) {
  const char* const at = text.data() + from;
  const std::size_t left = text.size() - from;
  if (left >= kScanned) {
    return commasAt(at) | commasAt(at + kVector) << kVector |
           commasAt(at + 2 * kVector) << (2 * kVector) |
           commasAt(at + 3 * kVector) << (3 * kVector);
  }
  std::uint64_t ends = std::uint64_t{1} << left;
  std::size_t place = 0;
  for (; left - place >= kVector; place += kVector) ends |= commasAt(at + place) << place;
  const std::uint64_t lastVector = commasAt(text.data() + text.size() - kVector);
  return ends | lastVector >> (kVector - (left - place)) << place;
}

/// Like `findEnds`, but block by block.
std::size_t findEndsByBlocks(std::string_view text, std::size_t most, FieldEnds& ends) {
  if (text.size() < kVector) return findEnds(text, most, ends);
  std::size_t count = 0;
  for (std::size_t from = 0; from <= text.size() && count < most; from += kScanned) {
    for (std::uint64_t left = endsInBlock(text, from); left != 0; left &= left - 1) {
      ends[count++] =
          static_cast<std::uint16_t>(from + static_cast<unsigned>(std::countr_zero(left)));
    }
  }
  return std::min(count, most);
}

constexpr std::size_t kGroup = 4;

/// The bytes of a word that a field of three to six characters takes.
constexpr std::array<std::uint64_t, 4> kBytesOfField = {~0ULL << 40, ~0ULL << 32, ~0ULL << 24,
                                                        ~0ULL << 16};

/// Consecutive fields of a text.
struct Fields {
  const char* text;
  std::size_t start;
  std::size_t strange = 0;  ///< above 3 if one was too short or too long

  /// The digits of the next two fields, as numbers at the end of a word each; point and commas are
  /// cleared. The second field ends after at least eight characters.
  __m128i digits(std::size_t firstEnd, std::size_t secondEnd) {
    const std::size_t first = firstEnd - start - kShortest;
    const std::size_t second = secondEnd - firstEnd - 1 - kShortest;
    const char* const last = text + secondEnd - kLevelColumns;
    std::uint64_t atStart = 0;  // if the first field ends within the first eight characters
    if (firstEnd < kLevelColumns) {
      std::memcpy(&atStart, text, sizeof atStart);
      atStart <<= 8 * ((kLevelColumns - firstEnd) & 7);
    }
    const __m128i words = firstEnd < kLevelColumns ? both(&atStart, last)
                                                   : both(text + firstEnd - kLevelColumns, last);
    const __m128i bytes = both(&kBytesOfField[first & 3], &kBytesOfField[second & 3]);
    strange |= first | second;
    start = secondEnd + 1;
    const __m128i zeros = _mm_set1_epi64x(static_cast<std::int64_t>(kZeroWord));
    return _mm_and_si128(_mm_xor_si128(words, zeros), bytes);
  }

 private:
  static __m128i both(const void* first, const void* second) {
    const __m128i low = _mm_loadl_epi64(static_cast<const __m128i*>(first));
    return _mm_castps_si128(_mm_loadh_pi(_mm_castsi128_ps(low), static_cast<const __m64*>(second)));
  }
};

/// The hundredths of two levels, each as two terms.
__m128i termsOf(__m128i digits) {
  const __m128i zero = _mm_setzero_si128();
  const __m128i scale = _mm_setr_epi16(0, 0, 10000, 1000, 100, 0, 10, 1);
  const __m128i terms = _mm_packs_epi32(_mm_madd_epi16(_mm_unpacklo_epi8(digits, zero), scale),
                                        _mm_madd_epi16(_mm_unpackhi_epi8(digits, zero), scale));
  return _mm_madd_epi16(terms, _mm_set1_epi16(1));
}

/// Takes a group of levels from 0 to 299.99 dB; false if one has another form.
bool takeGroup(const char* text, std::size_t start, const std::uint16_t* ends, LevelCode* codes) {
  if (ends[1] < kLevelColumns) return false;
  Fields fields{text, start};
  const __m128i first = fields.digits(ends[0], ends[1]);
  const __m128i second = fields.digits(ends[2], ends[3]);
  const __m128i largest = _mm_set1_epi64x(0x0909000909020000);  // what each byte may be
  const __m128i above = _mm_or_si128(_mm_subs_epu8(first, largest), _mm_subs_epu8(second, largest));
  const __m128i fits = _mm_cmpeq_epi8(above, _mm_setzero_si128());
  if (fields.strange > 3 || _mm_movemask_epi8(fits) != 0xFFFF) return false;
  const __m128i sums =
      _mm_madd_epi16(_mm_packs_epi32(termsOf(first), termsOf(second)), _mm_set1_epi16(1));
  _mm_storel_epi64(reinterpret_cast<__m128i*>(codes), _mm_packs_epi32(sums, sums));
  return true;
}

#else

std::size_t findEndsByBlocks(std::string_view text, std::size_t most, FieldEnds& ends) {
  return findEnds(text, most, ends);
}

constexpr std::size_t kGroup = 1;

bool takeGroup(const char*, std::size_t, const std::uint16_t*, LevelCode*) { return false; }

#endif

/// Takes one level of any form; false if there is none.
bool takeField(std::string_view field, LevelCode& code) {
  if (field == "9999.00") {
    code = kInvalidCode;
    return true;
  }
  const bool negative = field.starts_with('-');
  if (negative) field.remove_prefix(1);
  if (field.size() < kShortest || field.size() > kLongestLevel || field.front() == ' ')
    return false;
  std::array<char, kLevelColumns> columns;
  columns.fill(' ');
  std::copy(field.begin(), field.end(), columns.end() - static_cast<std::ptrdiff_t>(field.size()));
  std::uint64_t word = 0;
  std::memcpy(&word, columns.data(), columns.size());
  const std::int32_t hundredths = hundredthsInColumns(word);
  if (hundredths < 0 || hundredths > kLargestCode || (negative && hundredths == 0)) return false;
  code = static_cast<LevelCode>(negative ? -hundredths : hundredths);
  return true;
}

/// Takes levels from the start of the text until one has no form of a level; returns how many.
std::size_t takeFields(std::string_view text, std::span<const std::uint16_t> ends,
                       LevelCode* codes) {
  std::size_t start = 0;
  std::size_t count = 0;
  while (count < ends.size()) {
    const std::size_t full = std::min(count + kGroup, ends.size());
    if (full - count == kGroup && takeGroup(text.data(), start, &ends[count], codes + count)) {
      count = full;
    }
    for (; count < full; ++count) {
      if (!takeField(text.substr(start, ends[count] - start), codes[count])) return count;
      start = ends[count] + 1U;
    }
    start = ends[count - 1] + 1U;
  }
  return count;
}

}  // namespace

FieldsTaken levelsAtFront(std::string_view text, std::span<LevelCode> codes) {
  if constexpr (std::endian::native != std::endian::little) return {};
  FieldsTaken taken;
  while (taken.count < codes.size() && !taken.last) {
    const std::string_view rest = text.substr(taken.length);
    FieldEnds ends;
    const std::size_t found = findEndsByBlocks(
        rest.substr(0, kLongestText), std::min(kFieldsAtOnce, codes.size() - taken.count), ends);
    const std::size_t count =
        takeFields(rest, std::span(ends).first(found), codes.data() + taken.count);
    if (count == 0) break;
    const std::size_t end = ends[count - 1];
    taken.last = end == rest.size();
    taken.count += count;
    taken.length += taken.last ? end : end + 1;
    if (count < found) break;
  }
  return taken;
}

}  // namespace aq
