#include "aq/masking/cut_map.h"

#include <limits>
#include <string>
#include <utility>

#include "aq/core/error.h"
#include "aq/detail/pointers.h"

namespace aq {
namespace {

std::shared_ptr<AQ_MaskRow> rowWithout(std::int16_t low, std::int16_t high) {
  auto row = std::make_shared<AQ_MaskRow>();
  for (std::int32_t band = low; band <= high; ++band) {
    row->store(static_cast<std::int16_t>(band), AQ_Mask());
  }
  return row;
}

void expectBands(const AQ_MaskRow& row, std::int32_t number, const AQ_MaskRow& first) {
  if (row.LowBand() == first.LowBand() && row.HighBand() == first.HighBand()) return;
  throw Error(ErrorCode::InvalidArgument,
              "row " + std::to_string(number) + " of a map has different bands from the first row");
}

}  // namespace

std::shared_ptr<AQ_MaskMap> cutMap(const AQ_MaskMap& map, std::int16_t first, std::int16_t last) {
  auto part = std::make_shared<AQ_MaskMap>();
  for (std::int32_t number = first; number <= last; ++number) {
    part->Row(static_cast<std::int16_t>(number - first + 1),
              map.heldRow(static_cast<std::int16_t>(number)));
  }
  return part;
}

std::shared_ptr<AQ_MaskMap> joinMaps(const AQ_MaskMap& before, const AQ_MaskMap& after,
                                     std::int32_t gap) {
  if (std::int64_t{before.Count()} + gap + after.Count() >
      std::numeric_limits<std::int16_t>::max()) {
    throw Error(ErrorCode::Overflow, "together the maps have more than 32767 rows");
  }
  const AQ_MaskRow& first = orThrow(before.heldRow(1));
  auto whole = std::make_shared<AQ_MaskMap>();
  std::int16_t next = 0;
  const auto add = [&](std::shared_ptr<AQ_MaskRow> row) { whole->Row(++next, std::move(row)); };
  const auto addAll = [&](const AQ_MaskMap& map) {
    for (std::int32_t number = 1; number <= map.Count(); ++number) {
      const auto& row = map.heldRow(static_cast<std::int16_t>(number));
      expectBands(orThrow(row), number, first);
      add(row);
    }
  };
  addAll(before);
  for (std::int32_t i = 0; i < gap; ++i) add(rowWithout(first.LowBand(), first.HighBand()));
  addAll(after);
  return whole;
}

}  // namespace aq
