#include "aq/masking/mask.h"

namespace aq {
namespace {

template <class Enumeration>
std::string_view letterOf(std::string_view letters, Enumeration value) {
  if (value < 0 || static_cast<std::size_t>(value) >= letters.size()) return {};
  return letters.substr(static_cast<std::size_t>(value), 1);
}

template <class Enumeration>
void setFrom(std::string_view letters, char letter, Enumeration& value) {
  const std::size_t at = letters.find(letter);
  if (at != letters.npos) value = static_cast<Enumeration>(at);
}

}  // namespace

std::string AQ_Mask::MaskString() const {
  std::string letters(letterOf(kMaskModes, mode_));
  letters += letterOf(kMaskAdjustments, adjust_);
  return letters;
}

void AQ_Mask::MaskString(std::string_view letters) {
  if (letters.empty()) return;
  setFrom(kMaskModes, letters.front(), mode_);
  setFrom(kMaskAdjustments, letters.back(), adjust_);
}

}  // namespace aq
