#include "aq/core/words.h"

#include <algorithm>
#include <array>
#include <utility>

namespace aq {
namespace {

template <class Enumeration, std::size_t size>
using Words = std::array<std::pair<Enumeration, std::string_view>, size>;

constexpr Words<AQ_AverageMethod, 6> kAveraging{{{AQ_LINEAR, "LINEAR"},
                                                 {AQ_TRUSLO, "TRUSLO"},
                                                 {AQ_4S100, "4S100"},
                                                 {AQ_4S95, "4S95"},
                                                 {AQ_CONTEXPO, "CONTEXPO"},
                                                 {AQ_NA, "NA"}}};
constexpr Words<AQ_TimeStampType, 5> kTimeStamps{{{AQ_START, "START"},
                                                  {AQ_MIDPT, "MIDPT"},
                                                  {AQ_END, "END"},
                                                  {AQ_ICAOSLO, "ICAOSLO"},
                                                  {AQ_OLDSLO, "OLDSLO"}}};
constexpr Words<AQ_RefTimeType, 8> kReferences{{{AQ_START_REF, "START"},
                                                {AQ_OVERHEAD, "OVERHEAD"},
                                                {AQ_AMAX, "AMAX"},
                                                {AQ_PMAX, "PMAX"},
                                                {AQ_TMAX, "TMAX"},
                                                {AQ_OAMAX, "OAMAX"},
                                                {AQ_HACK, "HACK"},
                                                {AQ_OTHER, "OTHER"}}};

template <class Table, class Enumeration>
std::string_view wordIn(const Table& words, Enumeration value) {
  const auto entry = std::find_if(words.begin(), words.end(),
                                  [value](const auto& row) { return row.first == value; });
  return entry == words.end() ? std::string_view() : entry->second;
}

template <class Table, class Enumeration>
bool setFrom(const Table& words, Enumeration& value, std::string_view word) {
  const auto entry = std::find_if(words.begin(), words.end(),
                                  [word](const auto& row) { return row.second == word; });
  if (entry == words.end()) return false;
  value = entry->first;
  return true;
}

}  // namespace

std::string_view wordOf(AQ_AverageMethod value) { return wordIn(kAveraging, value); }
std::string_view wordOf(AQ_TimeStampType value) { return wordIn(kTimeStamps, value); }
std::string_view wordOf(AQ_RefTimeType value) { return wordIn(kReferences, value); }

bool setByWord(AQ_AverageMethod& value, std::string_view word) {
  return setFrom(kAveraging, value, word);
}
bool setByWord(AQ_TimeStampType& value, std::string_view word) {
  return setFrom(kTimeStamps, value, word);
}
bool setByWord(AQ_RefTimeType& value, std::string_view word) {
  return setFrom(kReferences, value, word);
}

}  // namespace aq
