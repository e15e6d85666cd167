#include "aq/masking/mask_row.h"

#include <utility>

namespace aq {

std::shared_ptr<AQ_MaskRow> AQ_MaskRow::Copy() {
  auto copy = std::make_shared<AQ_MaskRow>();
  for (std::int32_t band = bands_.low; band <= bands_.high; ++band) {
    const auto nBand = static_cast<std::int16_t>(band);
    copy->store(nBand, decision(nBand));
  }
  copy->LGB(lastGoodBand_);
  return copy;
}

std::shared_ptr<AQ_Mask> AQ_MaskRow::Mask(std::int16_t nBand) {
  const MaskCode code = fetch(nBand);
  auto& object = objects_.orCreate().touch(nBand);
  if (!object) object = maskOf(code).Copy();
  return object;
}

void AQ_MaskRow::Mask(std::int16_t nBand, std::shared_ptr<AQ_Mask> mask) {
  auto& object = objects_.orCreate().touch(nBand);  // first, since this may throw
  if (place(nBand) != nullptr) object = std::move(mask);
}

bool AQ_MaskRow::contains(std::int32_t band) const {
  if (!std::in_range<std::int16_t>(band)) return false;
  const MaskCode* const code = codes_.find(static_cast<std::int16_t>(band));
  return code != nullptr && *code != kNoMaskCode;
}

AQ_Mask AQ_MaskRow::decision(std::int16_t band) {
  static_cast<void>(fetch(band));
  return held(band);
}

/// The mask of a band that has one.
AQ_Mask AQ_MaskRow::held(std::int16_t band) const {
  const auto* const object = objects_ ? objects_->find(band) : nullptr;
  return object != nullptr && *object ? **object : maskOf(*codes_.find(band));
}

void AQ_MaskRow::store(std::int16_t band, const AQ_Mask& decision) {
  const MaskCode code = maskCodeOf(decision);
  if (code == kNoMaskCode) {
    Mask(band, decision.Copy());
  } else if (MaskCode* const cell = place(band)) {
    *cell = code;
  }
}

std::span<MaskCode> AQ_MaskRow::renew(std::int16_t low, std::size_t count) {
  const std::span<MaskCode> codes = codes_.renew(low, count);
  objects_.reset();
  bands_.widen(low, count);
  return codes;
}

/// The code of a band; a band without one gets that of a default mask.
MaskCode& AQ_MaskRow::fetch(std::int16_t band) {
  bands_.widen(band);
  MaskCode& code = codes_.touch(band);
  if (code == kNoMaskCode) code = kDefaultMaskCode;
  return code;
}

/// The code to set, initially that of a default mask; `nullptr` if the band had a mask, which is
/// then removed.
MaskCode* AQ_MaskRow::place(std::int16_t band) {
  bands_.widen(band);
  MaskCode& code = codes_.touch(band);
  if (objects_) objects_.orCreate().touch(band).reset();
  const bool hadMask = std::exchange(code, kNoMaskCode) != kNoMaskCode;
  if (hadMask) return nullptr;
  code = kDefaultMaskCode;
  return &code;
}

}  // namespace aq
