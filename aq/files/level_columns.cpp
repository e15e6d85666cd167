#include "aq/files/level_columns.h"

#include <algorithm>

#include "aq/text/level_code.h"

namespace aq {

void LevelColumns::read(FieldReader& fields, AQ_Spectrum& spectrum) {
  const std::size_t count = low <= high ? static_cast<std::size_t>(high - low) + 1 : 0;
  codes.resize(std::min(count, fields.mostLeft()));  // the header may claim any number of bands
  const std::size_t plain = fields.takeRun(std::span(codes), levelsAtFront);
  if (plain == count) {
    spectrum.assignCodes(low, codes);
    return;
  }
  levels.resize(plain);
  copyLevels(std::span(codes).first(plain), levels.data());
  while (levels.size() < count) levels.push_back(fields.number("a level"));
  spectrum.assignLevels(low, levels);
}

void appendLevels(std::string& text, const AQ_Spectrum& spectrum) {
  const auto codes = spectrum.levelCodes();
  const auto doubles = spectrum.levelDoubles();
  appendLevels(text, codes);
  appendLevels(text, doubles);
  if (!codes.empty() || !doubles.empty()) return;
  for (std::int32_t band = spectrum.LowBand(); band <= spectrum.HighBand(); ++band) {
    if (band != spectrum.LowBand()) text += ',';
    appendLevel(text, spectrum.SPL(static_cast<std::int16_t>(band)).toDouble());
  }
}

}  // namespace aq
