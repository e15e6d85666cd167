#include "aq/files/history_words.h"

#include "aq/core/words.h"
#include "aq/text/checked_keywords.h"
#include "aq/text/number_text.h"

namespace aq {

void HistoryWords::see(const HeaderLine& line) {
  const auto take = [&line](std::string_view keyword, Word& word) {
    if (line.keyword == keyword) word = {line.number, std::string(line.value)};
  };
  take(keywords::kAveragingMethod, averaging_);
  take(keywords::kTimeStampType, stamp_);
  take(keywords::kReferenceTimeType, reference_);
}

std::optional<AQ_RefTimeType> HistoryWords::referenceType() const {
  AQ_RefTimeType type = AQ_START_REF;
  if (!setByWord(type, upperCased(reference_.text))) return std::nullopt;
  return type;
}

std::vector<HistoryWords::Other> HistoryWords::takeInto(AQ_SpectralTimeHistory& history) const {
  std::vector<Other> others;
  if (const auto type = referenceType()) history.ReferenceType(*type);
  const auto compare = [&](std::string_view what, const Word& word, const std::string& readAs) {
    if (word.line == 0 || upperCased(word.text) == readAs) return;
    others.push_back({word.line, what, word.text, readAs});
  };
  compare("averaging method", averaging_, history.sAveragingMethod());
  compare("time stamp type", stamp_, history.sTimeStampType());
  compare("reference time type", reference_, history.sReferenceTimeType());
  return others;
}

}  // namespace aq
