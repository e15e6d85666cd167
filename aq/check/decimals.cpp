#include "aq/check/decimals.h"

#include <algorithm>
#include <string>

#include "aq/text/number_text.h"

namespace aq {

void Decimals::see(std::string_view field, const FindingPlace& place) {
  constexpr std::size_t kKept = 1000;
  field = trimmed(field);
  if (field.empty() || field == "0" || field == "9999") return;
  const std::size_t point = field.find('.');
  const std::size_t decimals = point == field.npos ? 0 : field.size() - point - 1;
  Seen& seen = seen_[decimals];
  ++count_;
  ++seen.count;
  seen.endsInZero = seen.endsInZero || (decimals != 0 && field.back() == '0');
  if (seen.first.size() < kKept) seen.first.push_back(place);
}

void Decimals::report(const FindingPlace& told, const Reporter& report) const {
  constexpr std::size_t kMany = 20;  // one value in this many may have lost digits, or a single one
  constexpr std::size_t kEnough = 8;
  const auto usual = std::max_element(
      seen_.begin(), seen_.end(),
      [](const auto& one, const auto& other) { return one.second.count < other.second.count; });
  if (count_ < kEnough || !usual->second.endsInZero) return;
  std::size_t fewer = 0;
  for (auto seen = seen_.begin(); seen != usual; ++seen) fewer += seen->second.count;
  if (fewer > std::max<std::size_t>(1, count_ / kMany)) return;
  for (auto seen = seen_.begin(); seen != usual; ++seen) {
    for (const FindingPlace& place : seen->second.first) {
      if (place.line == told.line && place.field == told.field) continue;
      report(Kind::LostDigits, place,
             "the number has " + decimalsText(seen->first) + ", but the others have " +
                 std::to_string(usual->first));
    }
  }
}

std::string decimalsText(std::size_t count) {
  return std::to_string(count) + (count == 1 ? " decimal" : " decimals");
}

}  // namespace aq
