#include "aq/core/number_index.h"

namespace aq {

std::optional<std::size_t> NumberIndex::find(std::int32_t number) const {
  if (isRun_) {
    const std::int64_t slot = std::int64_t{number} - first_;
    if (slot < 0 || slot >= static_cast<std::int64_t>(length_)) return std::nullopt;
    return static_cast<std::size_t>(slot);
  }
  const auto entry = table_.find(number);
  if (entry == table_.end()) return std::nullopt;
  return entry->second;
}

void NumberIndex::insert(std::int32_t number, std::size_t slot) {
  if (isRun_ && length_ == 0) first_ = number;
  if (isRun_ && slot == length_ &&
      std::int64_t{number} == first_ + static_cast<std::int64_t>(length_)) {
    ++length_;
    return;
  }
  endRun();
  table_.emplace(number, slot);
}

void NumberIndex::erase(std::int32_t number) {
  if (isRun_ && std::int64_t{number} - first_ + 1 == static_cast<std::int64_t>(length_)) {
    --length_;
    return;
  }
  endRun();
  table_.erase(number);
}

void NumberIndex::renumber(const std::vector<std::size_t>& newSlots) {
  for (auto& [number, slot] : table_) slot = newSlots[slot];
}

void NumberIndex::endRun() {
  if (!isRun_) return;
  table_.reserve(length_ + 1);
  for (std::size_t slot = 0; slot < length_; ++slot) {
    table_.emplace(static_cast<std::int32_t>(first_ + static_cast<std::int64_t>(slot)), slot);
  }
  isRun_ = false;
}

}  // namespace aq
