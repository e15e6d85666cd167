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
  Cell& cell = fetch(nBand);
  if (!cell.object) cell.object = cell.value.Copy();
  return cell.object;
}

void AQ_MaskRow::Mask(std::int16_t nBand, std::shared_ptr<AQ_Mask> mask) {
  if (Cell* const cell = place(nBand)) cell->object = std::move(mask);
}

AQ_Mask AQ_MaskRow::decision(std::int16_t band) {
  const Cell& cell = fetch(band);
  return cell.object ? *cell.object : cell.value;
}

void AQ_MaskRow::store(std::int16_t band, const AQ_Mask& decision) {
  if (Cell* const cell = place(band)) cell->value = decision;
}

/// The cell of a band, with a default mask if it had none.
AQ_MaskRow::Cell& AQ_MaskRow::fetch(std::int16_t band) {
  bands_.widen(band);
  Cell& cell = cells_.touch(band);
  cell.taken = true;
  return cell;
}

/// An empty cell to fill; `nullptr` when the band had a mask, which is then removed.
AQ_MaskRow::Cell* AQ_MaskRow::place(std::int16_t band) {
  bands_.widen(band);
  Cell& cell = cells_.touch(band);
  const bool hadMask = std::exchange(cell, Cell()).taken;
  if (hadMask) return nullptr;
  cell.taken = true;
  return &cell;
}

}  // namespace aq
