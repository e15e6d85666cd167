#include "aq/masking/mask_map.h"

#include "aq/detail/pointers.h"
#include "aq/masking/last_good_band.h"

namespace aq {

std::shared_ptr<AQ_MaskMap> AQ_MaskMap::Copy() const {
  auto copy = std::make_shared<AQ_MaskMap>();
  const std::int32_t count = Count();
  for (std::int32_t record = 1; record <= count; ++record) {
    const auto nRecord = static_cast<std::int16_t>(record);
    copy->Row(nRecord, orThrow(Row(nRecord)).Copy());
  }
  return copy;
}

void AQ_MaskMap::setLGB() {
  for (const auto& row : rows_.placed()) orThrow(row).LGB(lastGoodBand(orThrow(row)));
}

}  // namespace aq
