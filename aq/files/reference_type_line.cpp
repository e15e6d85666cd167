#include "aq/files/reference_type_line.h"

#include "aq/core/words.h"
#include "aq/text/checked_keywords.h"
#include "aq/text/number_text.h"

namespace aq {

void ReferenceTypeLine::see(const HeaderLine& line) {
  if (line.keyword == keywords::kReferenceTimeType) word_ = line.value;
}

std::optional<AQ_RefTimeType> ReferenceTypeLine::type() const {
  AQ_RefTimeType type = AQ_START_REF;
  if (!setByWord(type, upperCased(word_))) return std::nullopt;
  return type;
}

}  // namespace aq
