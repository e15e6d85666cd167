#include "aq/files/reference_type_line.h"

#include "aq/spectral/spectral_time_history.h"
#include "aq/text/checked_keywords.h"
#include "aq/text/number_text.h"

namespace aq {

void ReferenceTypeLine::see(const HeaderLine& line) {
  if (line.keyword == keywords::kReferenceTimeType) word_ = line.value;
}

std::optional<AQ_RefTimeType> ReferenceTypeLine::type() const {
  const std::string wanted = upperCased(word_);
  AQ_SpectralTimeHistory words;
  for (std::int32_t number = AQ_START_REF; number <= AQ_OTHER; ++number) {
    words.ReferenceType(static_cast<AQ_RefTimeType>(number));
    if (words.sReferenceTimeType() == wanted) return words.ReferenceType();
  }
  return std::nullopt;
}

}  // namespace aq
