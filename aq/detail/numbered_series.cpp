#include "aq/detail/numbered_series.h"

#include <algorithm>

namespace aq {

void throwNoRecord(std::int32_t number) {
  throw Error(ErrorCode::InvalidArgument, "no record " + std::to_string(number));
}

std::size_t NumberIndex::findInTable(std::int32_t number) const {
  const auto entry = table_.find(number);
  return entry == table_.end() ? kNoSlot : entry->second;
}

std::vector<std::pair<std::int32_t, std::size_t>> NumberIndex::sorted() const {
  std::vector<std::pair<std::int32_t, std::size_t>> numbers(table_.begin(), table_.end());
  std::sort(numbers.begin(), numbers.end());
  return numbers;
}

/// Once a number neither continues the run nor replaces its last one, the table holds all numbers.
void NumberIndex::reserveInTable(std::int32_t number) {
  if (isRun()) {
    std::unordered_map<std::int32_t, std::size_t> table;
    table.reserve(length_.value + 1);
    for (std::size_t slot = 0; slot < length_.value; ++slot) {
      table.emplace(static_cast<std::int32_t>(first_ + static_cast<std::int64_t>(slot)), slot);
    }
    table_ = std::move(table);
  }
  table_.try_emplace(number);
}

void NumberIndex::set(std::int32_t number, std::size_t slot) {
  if (!isRun()) {
    table_.find(number)->second = slot;
    return;
  }
  if (length_.value == 0) first_ = number;
  length_.value = slot + 1;
}

}  // namespace aq
