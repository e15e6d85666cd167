#include "aq/sdf/field.h"

#include <algorithm>

namespace aq::sdf {
namespace {

char plain(char c) {
  if (c >= 'a' && c <= 'z') return static_cast<char>(c - 'a' + 'A');
  const bool kept = (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9');
  return kept ? c : '_';
}

/// A word in capitals, with "_" for characters other than letters and digits.
std::string plainWord(std::string_view word) {
  std::string text(word.size(), '_');
  std::transform(word.begin(), word.end(), text.begin(), plain);
  return text;
}

bool isWord(const std::string& found, std::string_view word, std::string_view affix) {
  const std::string whole = plainWord(word);
  if (found == whole) return true;
  if (affix.empty()) return false;
  return (whole.ends_with(affix) && found == whole.substr(0, whole.size() - affix.size())) ||
         (whole.starts_with(affix) && found == whole.substr(affix.size()));
}

}  // namespace

std::string_view wordOf(const Codes& codes, std::int32_t number) {
  const auto code = std::find_if(codes.codes.begin(), codes.codes.end(),
                                 [&](const Code& one) { return one.number == number; });
  return code == codes.codes.end() ? std::string_view() : code->word;
}

std::int16_t numberOf(const Codes& codes, std::string_view word) {
  const std::string found = plainWord(word);
  const auto code = std::find_if(codes.codes.begin(), codes.codes.end(), [&](const Code& one) {
    return isWord(found, one.word, codes.affix) ||
           (!one.otherWord.empty() && isWord(found, one.otherWord, codes.affix));
  });
  return code == codes.codes.end() ? kUnknownCode : code->number;
}

}  // namespace aq::sdf
