#include "aq/spectral/ambient_masking.h"

#include <algorithm>
#include <cmath>
#include <string>
#include <utility>

#include "aq/detail/pointers.h"

namespace aq {
namespace {

/// Levels have two decimals, so a difference of 2.9999999996 dB counts as 3 dB.
bool isMasked(double level, double ambient, double margin) {
  constexpr double kRounding = 1e-6;
  return level - ambient < margin - kRounding;
}

double ambientLevel(const AQ_Spectrum& ambient, std::int16_t band) {
  const std::string expected =
      "expected an ambient level in band " + std::to_string(band) + ", found ";
  if (!ambient.contains(band)) throw Error(ErrorCode::InvalidValue, expected + "none");
  const double level = ambient.SPL(band).toDouble();
  // 9999 would mask its band in every record.
  if (level == kInvalidLevel) throw Error(ErrorCode::InvalidValue, expected + "9999");
  return level;
}

std::shared_ptr<AQ_MaskRow> maskedRow(const AQ_Spectrum& spectrum, const AQ_Spectrum& ambient,
                                      double margin) {
  auto row = std::make_shared<AQ_MaskRow>();
  for (const auto& [band, level] : spectrum) {
    AQ_Mask mask;
    if (isMasked(level.toDouble(), ambientLevel(ambient, band), margin)) {
      mask.MaskMode(MASKED_BY_MASK_CRITERION);
    }
    row->store(band, mask);
  }
  return row;
}

}  // namespace

std::shared_ptr<AQ_MaskMap> maskByAmbient(const AQ_SpectralTimeHistory& history,
                                          const AQ_Spectrum& ambient, double margin) {
  // A negative margin would leave levels below the ambient unmasked.
  if (!std::isfinite(margin) || margin < 0) {
    throw Error(ErrorCode::InvalidValue,
                "expected a margin of 0 dB or more, found " + std::to_string(margin));
  }
  auto map = std::make_shared<AQ_MaskMap>();
  const std::int32_t count = std::max<std::int32_t>(1, history.Count());
  for (std::int32_t number = 1; number <= count; ++number) {
    if (!history.contains(number)) {
      throw Error(ErrorCode::InvalidArgument,
                  "a map needs records numbered from 1 without a gap, but record " +
                      std::to_string(number) + " is missing");
    }
    const auto record = static_cast<std::int16_t>(number);
    map->Row(record, maskedRow(orThrow(history.spectrum(record)), ambient, margin));
  }
  map->setLGB();
  return map;
}

}  // namespace aq
