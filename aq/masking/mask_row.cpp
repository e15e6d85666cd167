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
  const Cell& cell = fetch(nBand);
  auto& object = objects_.made().touch(nBand);
  if (!object) object = cell.value.Copy();
  return object;
}

void AQ_MaskRow::Mask(std::int16_t nBand, std::shared_ptr<AQ_Mask> mask) {
  if (place(nBand) != nullptr) objects_.made().touch(nBand) = std::move(mask);
}

AQ_Mask AQ_MaskRow::decision(std::int16_t band) {
  const Cell& cell = fetch(band);
  const auto* const object = objects_ ? objects_->find(band) : nullptr;
  return object != nullptr && *object ? **object : cell.value;
}

void AQ_MaskRow::store(std::int16_t band, const AQ_Mask& decision) {
  if (Cell* const cell = place(band)) cell->value = decision;
}

void AQ_MaskRow::assign(std::int16_t low, std::span<const AQ_Mask> decisions) {
  objects_.reset();
  const auto cells = cells_.renew(low, decisions.size());
  for (std::size_t i = 0; i < cells.size(); ++i) cells[i] = {decisions[i], true};
  if (decisions.empty()) return;
  bands_.widen(low);
  bands_.widen(static_cast<std::int16_t>(low + static_cast<int>(decisions.size()) - 1));
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
  if (objects_) objects_.made().touch(band).reset();
  const bool hadMask = std::exchange(cell, Cell()).taken;
  if (hadMask) return nullptr;
  cell.taken = true;
  return &cell;
}

}  // namespace aq
