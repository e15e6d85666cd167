#include "aq/files/level_columns.h"

#include "aq/core/number_text.h"

namespace aq {

void LevelColumns::read(FieldReader& fields, AQ_Spectrum& spectrum) {
  room.resize(low <= high ? static_cast<std::size_t>(high - low) + 1 : 0);
  fields.numbers(room, "a level");
  spectrum.assignLevels(low, room);
}

void appendLevels(std::string& text, const AQ_Spectrum& spectrum) {
  const auto plain = spectrum.plainLevels();
  appendHundredths(text, plain);
  if (!plain.empty()) return;
  for (std::int32_t band = spectrum.LowBand(); band <= spectrum.HighBand(); ++band) {
    if (band != spectrum.LowBand()) text += ',';
    appendHundredths(text, spectrum.SPL(static_cast<std::int16_t>(band)).toDouble());
  }
}

}  // namespace aq
