#include "aq/files/level_columns.h"

#include <algorithm>

#include "aq/core/level_text.h"

namespace aq {

void LevelColumns::read(FieldReader& fields, AQ_Spectrum& spectrum) {
  const std::size_t count = low <= high ? static_cast<std::size_t>(high - low) + 1 : 0;
  codes.resize(count);
  const std::size_t plain = fields.some(std::span(codes), levelsAtFront);
  if (plain == count) {
    spectrum.assignCodes(low, codes);
    return;
  }
  levels.resize(count);
  std::transform(codes.begin(), codes.begin() + static_cast<std::ptrdiff_t>(plain), levels.begin(),
                 levelOf);
  for (std::size_t i = plain; i < count; ++i) levels[i] = fields.number("a level");
  spectrum.assignLevels(low, levels);
}

void appendLevels(std::string& text, const AQ_Spectrum& spectrum) {
  appendLevels(text, spectrum.levelCodes());
  appendLevels(text, spectrum.plainLevels());
  if (!spectrum.levelCodes().empty() || !spectrum.plainLevels().empty()) return;
  for (std::int32_t band = spectrum.LowBand(); band <= spectrum.HighBand(); ++band) {
    if (band != spectrum.LowBand()) text += ',';
    appendLevel(text, spectrum.SPL(static_cast<std::int16_t>(band)).toDouble());
  }
}

}  // namespace aq
