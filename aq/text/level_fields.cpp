#include <algorithm>
#include <array>
#include <bit>
#include <limits>

#include "aq/text/level_code.h"
#include "aq/text/plain_number.h"
#if defined(__GNUC__) && defined(__SSE2__)
#include <immintrin.h>
#define AQ_AVX2 __attribute__((target("avx2,bmi")))  // needs both extensions
#endif

// Comma-separated levels with two decimals and up to three digits before the point, or 9999.00.
// On a processor with AVX2 and BMI, the ends of all fields are found first and then eight levels
// are taken at a time, without a branch on their widths.

namespace aq {
namespace {

constexpr std::size_t kShortestLevel = 3;  // a point and two decimals
constexpr std::size_t kLongestLevel = 6;

/// Takes one level with two decimals, which may be negative or 9999.00; returns its length, or 0 if
/// the text does not start with one.
std::size_t takeLevel(std::string_view text, LevelCode& code) {
  constexpr std::string_view kInvalidText = "9999.00";
  if (text.starts_with(kInvalidText)) {
    code = kInvalidCode;
    const std::size_t size = kInvalidText.size();
    return text.size() == size || text[size] == ',' ? size : 0;
  }
  const PlainNumber number = plainNumber(text);
  const bool isLevel = number.decimals == 2 &&
                       number.length <= kLongestLevel + (number.negative ? 1 : 0) &&
                       number.digits <= std::numeric_limits<LevelCode>::max() &&
                       !(number.negative && number.digits == 0);
  code = static_cast<LevelCode>(number.negative ? -number.digits : number.digits);
  return isLevel ? number.length : 0;
}

#ifdef AQ_AVX2

constexpr std::size_t kGroup = 8;
constexpr std::size_t kFieldsAtOnce = 64;
constexpr std::size_t kScanned = 64;
constexpr std::size_t kHalf = sizeof(__m128i);
constexpr std::size_t kWhole = sizeof(__m256i);
constexpr std::size_t kLengths = kLongestLevel - kShortestLevel + 1;
constexpr std::uint8_t kNoByte = 0x80;
using Bytes = std::array<std::uint8_t, kHalf>;

/// Where the fields of a text end: entry n is the end of field n, from 1, and entry 0 is the
/// position before the text.
using FieldEnds = std::array<std::uint16_t, 1 + kFieldsAtOnce + kScanned>;

/// A bit for every comma among 32 bytes.
AQ_AVX2 std::uint64_t commasAt(const char* at) {
  const __m256i bytes = _mm256_loadu_si256(reinterpret_cast<const __m256i*>(at));
  const __m256i commas = _mm256_cmpeq_epi8(bytes, _mm256_set1_epi8(','));
  return static_cast<std::uint32_t>(_mm256_movemask_epi8(commas));
}

/// A bit for every comma in the block at `from`, and for the end of the text if it lies in the
/// block. The text must have at least 32 bytes.
AQ_AVX2 std::uint64_t endsInBlock(std::string_view text, std::size_t from) {
  const char* const at = text.data() + from;
  const std::size_t left = text.size() - from;
  if (left >= kScanned) return commasAt(at) | commasAt(at + kWhole) << kWhole;
  const std::size_t place = left < kWhole ? 0 : kWhole;
  const std::uint64_t last = commasAt(text.data() + text.size() - kWhole);
  return std::uint64_t{1} << left | (place == 0 ? 0 : commasAt(at)) |
         last >> (kWhole - (left - place)) << place;
}

/// Finds the ends of up to `most` fields of a text of at least 32 bytes; returns how many it found.
AQ_AVX2 std::size_t findEnds(std::string_view text, std::size_t most, FieldEnds& ends) {
  std::size_t count = 0;
  ends[0] = static_cast<std::uint16_t>(-1);
  for (std::size_t from = 0; from <= text.size() && count < most; from += kScanned) {
    for (std::uint64_t left = endsInBlock(text, from); left != 0; left &= left - 1) {
      ends[++count] =
          static_cast<std::uint16_t>(from + static_cast<unsigned>(std::countr_zero(left)));
    }
  }
  return std::min(count, most);
}

/// Shuffles of sixteen bytes that end with two neighbouring fields: they move each field to the end
/// of its own half. Indexed by the lengths of both fields, less the shortest length.
constexpr auto kHalves = [] {
  std::array<std::array<Bytes, kLengths>, kLengths> all{};
  for (std::size_t first = 0; first < kLengths; ++first) {
    for (std::size_t second = 0; second < kLengths; ++second) {
      Bytes& places = all[first][second];
      places.fill(kNoByte);
      const std::size_t firstEnd = kHalf - (second + kShortestLevel) - 1;
      for (std::size_t left = 1; left <= first + kShortestLevel; ++left) {
        places[kWordBytes - left] = static_cast<std::uint8_t>(firstEnd - left);
      }
      for (std::size_t left = 1; left <= second + kShortestLevel; ++left) {
        places[kHalf - left] = static_cast<std::uint8_t>(kHalf - left);
      }
    }
  }
  return all;
}();

/// Shuffles: the one at byte n moves the first n of sixteen bytes to the end.
constexpr auto kToEnd = [] {
  std::array<std::uint8_t, 2 * kHalf> places{};
  places.fill(kNoByte);
  for (std::size_t i = 0; i < kHalf; ++i) places[kHalf + i] = static_cast<std::uint8_t>(i);
  return places;
}();

__m128i loaded(const void* bytes) { return _mm_loadu_si128(static_cast<const __m128i*>(bytes)); }

/// The sixteen bytes of text before `end`, or all bytes before it if there are fewer.
AQ_AVX2 __m128i bytesTo(const char* text, std::size_t end) {
  if (end >= kHalf) return loaded(text + end - kHalf);
  return _mm_shuffle_epi8(loaded(text), loaded(&kToEnd[end]));
}

/// The digits of two pairs of fields, whose points become 0. `places` are offsets in `kHalves`.
AQ_AVX2 __m256i digitsOf(__m128i low, __m128i high, std::uint32_t lowPlaces,
                         std::uint32_t highPlaces) {
  const auto* const halves = reinterpret_cast<const char*>(kHalves.data());
  const __m256i bytes = _mm256_set_m128i(high, low);
  const __m256i places = _mm256_set_m128i(loaded(halves + highPlaces), loaded(halves + lowPlaces));
  const __m256i digits =
      _mm256_shuffle_epi8(_mm256_xor_si256(bytes, _mm256_set1_epi8('0')), places);
  return _mm256_xor_si256(digits, _mm256_set1_epi64x(std::int64_t{'.' ^ '0'} << 40));
}

/// The hundredths of four levels, each as two terms.
AQ_AVX2 __m256i termsOf(__m256i digits) {
  const __m256i pairs = _mm256_set1_epi64x(0x010A0064010A0000);  // weights of each pair's digits
  const __m256i terms = _mm256_set1_epi64x(0x0001000103E80000);
  return _mm256_madd_epi16(_mm256_maddubs_epi16(digits, pairs), terms);
}

/// Takes eight levels from 0 to 299.99 dB, whose ends follow `ends[0]`; false if one has another
/// form. The text must have at least sixteen bytes.
AQ_AVX2 bool takeGroup(const char* text, const std::uint16_t* ends, LevelCode* codes) {
  const __m128i lengths = _mm_sub_epi16(_mm_sub_epi16(loaded(ends + 1), loaded(ends)),
                                        _mm_set1_epi16(1 + kShortestLevel));
  const __m128i strange = _mm_subs_epu16(lengths, _mm_set1_epi16(kLengths - 1));
  if (_mm_testz_si128(strange, strange) == 0) return false;
  constexpr int kRow = kLengths * sizeof(Bytes);
  const __m128i offsets =
      _mm_madd_epi16(lengths, _mm_set1_epi32(static_cast<int>(sizeof(Bytes)) << 16 | kRow));
  std::array<std::uint32_t, kGroup / 2> places;
  _mm_storeu_si128(reinterpret_cast<__m128i*>(places.data()), offsets);
  const __m256i even =
      digitsOf(bytesTo(text, ends[2]), bytesTo(text, ends[6]), places[0], places[2]);
  const __m256i odd =
      digitsOf(bytesTo(text, ends[4]), bytesTo(text, ends[8]), places[1], places[3]);
  const __m256i largest = _mm256_set1_epi64x(0x0909000909020000);  // the largest value of each byte
  const __m256i above =
      _mm256_or_si256(_mm256_subs_epu8(even, largest), _mm256_subs_epu8(odd, largest));
  if (_mm256_testz_si256(above, above) == 0) return false;
  const __m256i sums = _mm256_hadd_epi32(termsOf(even), termsOf(odd));
  const __m128i packed =
      _mm_packs_epi32(_mm256_castsi256_si128(sums), _mm256_extracti128_si256(sums, 1));
  _mm_storeu_si128(reinterpret_cast<__m128i*>(codes), packed);
  return true;
}

/// Takes groups of levels from the start of `text`, which must have at least 32 bytes.
AQ_AVX2 FieldsTaken takeGroups(std::string_view text, std::span<LevelCode> codes) {
  constexpr std::size_t kMost =
      kFieldsAtOnce * (kLongestLevel + 1);  // if all have the maximum length
  FieldEnds ends;
  const std::size_t found =
      findEnds(text.substr(0, kMost), std::min(codes.size(), kFieldsAtOnce), ends);
  std::size_t count = 0;
  while (count < found && found >= kGroup) {
    const std::size_t from = std::min(count, found - kGroup);  // may overlap the previous group
    if (!takeGroup(text.data(), &ends[from], &codes[from])) break;
    count = from + kGroup;
  }
  if (count == 0) return {};
  const bool last = ends[count] == text.size();
  return {.count = count, .length = ends[count] + (last ? 0U : 1U), .last = last};
}

FieldsTaken takeUsual(std::string_view text, std::span<LevelCode> codes) {
  static const bool can = __builtin_cpu_supports("avx2") != 0 && __builtin_cpu_supports("bmi") != 0;
  return can && text.size() >= kWhole ? takeGroups(text, codes) : FieldsTaken();
}

#else

FieldsTaken takeUsual(std::string_view, std::span<LevelCode>) { return {}; }

#endif

}  // namespace

FieldsTaken levelsAtFront(std::string_view text, std::span<LevelCode> codes) {
  constexpr std::size_t kAtOnce = 8;  // levels taken one by one before the usual form is retried
  FieldsTaken taken;
  while (taken.count < codes.size() && !taken.last) {
    const FieldsTaken usual = takeUsual(text.substr(taken.length), codes.subspan(taken.count));
    taken = {taken.count + usual.count, taken.length + usual.length, usual.last};
    for (std::size_t i = 0; i < kAtOnce && taken.count < codes.size() && !taken.last; ++i) {
      const std::size_t length = takeLevel(text.substr(taken.length), codes[taken.count]);
      if (length == 0) return taken;
      ++taken.count;
      taken.length += length;
      taken.last = taken.length == text.size();
      if (!taken.last) ++taken.length;
    }
  }
  return taken;
}

}  // namespace aq
