#include "aq/detail/tombstone_list.h"

#include <bit>
#include <utility>

namespace aq {
namespace {

constexpr std::size_t lowestBit(std::size_t i) { return i & (~i + 1); }

}  // namespace

void Tombstones::start(std::size_t slots) {
  std::vector<bool> removed(slots);
  std::vector<std::size_t> inUse(slots + 1);
  for (std::size_t i = 1; i <= slots; ++i) inUse[i] = lowestBit(i);
  removed_ = std::move(removed);
  inUse_ = std::move(inUse);
}

void Tombstones::add(std::size_t slot, std::size_t slots) {
  if (count() == 0) start(slots);
  ++count_;
  removed_[slot] = true;
  for (std::size_t i = slot + 1; i < inUse_.size(); i += lowestBit(i)) --inUse_[i];
}

void Tombstones::reserveNext() {
  removed_.emplace_back();
  removed_.pop_back();
  inUse_.emplace_back();
  inUse_.pop_back();
}

void Tombstones::grow() {
  const std::size_t i = inUse_.size();
  std::size_t used = 1;
  for (std::size_t part = 1; part < lowestBit(i); part *= 2) used += inUse_[i - part];
  removed_.push_back(false);
  inUse_.push_back(used);
}

std::size_t Tombstones::slotOf(std::size_t place) const {
  if (count() == 0) return place;
  std::size_t slot = 0;
  for (std::size_t step = std::bit_floor(inUse_.size() - 1); step != 0; step /= 2) {
    if (slot + step < inUse_.size() && inUse_[slot + step] <= place) {
      slot += step;
      place -= inUse_[slot];
    }
  }
  return slot;
}

std::size_t Tombstones::placeOf(std::size_t slot) const {
  if (count() == 0) return slot;
  std::size_t place = 0;
  for (std::size_t i = slot; i != 0; i -= lowestBit(i)) place += inUse_[i];
  return place;
}

}  // namespace aq
