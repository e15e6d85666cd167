#pragma once

#include <cstddef>
#include <cstdint>
#include <iterator>
#include <string>
#include <utility>
#include <vector>

#include "aq/core/error.h"
#include "aq/core/export.h"
#include "aq/detail/lazy_part.h"

namespace aq {

/// The slots that were removed from a list but not yet compacted away. Finding the n-th slot still
/// in use takes logarithmic time.
class AQ_API Tombstones {
 public:
  [[nodiscard]] std::size_t count() const { return count_; }
  [[nodiscard]] bool contains(std::size_t slot) const { return count() != 0 && removed_[slot]; }

  /// Removes `slot`, which must be in use, from a list of `slots` slots. A failure changes nothing.
  void add(std::size_t slot, std::size_t slots);

  /// Reserves room for one more slot, so that `grow` cannot fail.
  void reserveNext();

  /// Records that a slot in use was appended to the list.
  void grow();

  /// The slot at a zero-based index among those in use; the index must be less than their number.
  [[nodiscard]] std::size_t slotOf(std::size_t place) const;

  /// How many slots in use come before `slot`.
  [[nodiscard]] std::size_t placeOf(std::size_t slot) const;

 private:
  void start(std::size_t slots);

  std::size_t count_ = 0;
  std::vector<bool> removed_;
  // A binary indexed tree: entry i, one-based, counts the slots in use among the last
  // (lowest set bit of i) slots up to i. Empty while nothing is removed.
  std::vector<std::size_t> inUse_;
};

/// The values of a list in the order in which they were added. A removed value leaves an unused
/// slot, unless it is the last one and no other slot is unused. The list is compacted when unused
/// slots outnumber the others, so compacting adds only constant time on average to each removal.
template <class T>
class TombstoneList {
 public:
  template <class List, class Value>
  class Iterator {
   public:
    using iterator_category = std::forward_iterator_tag;
    using value_type = T;
    using difference_type = std::ptrdiff_t;
    using pointer = Value*;
    using reference = Value&;

    Iterator() = default;
    Iterator(List* list, std::size_t slot) : list_(list), slot_(slot) { skipUnused(); }
    Value& operator*() const { return list_->values_[slot_]; }
    Value* operator->() const { return &**this; }
    Iterator& operator++() {
      ++slot_;
      skipUnused();
      return *this;
    }
    Iterator operator++(int) { return std::exchange(*this, ++Iterator(*this)); }
    friend bool operator==(const Iterator&, const Iterator&) = default;

   private:
    void skipUnused() {
      while (slot_ < list_->values_.size() && list_->isRemoved(slot_)) ++slot_;
    }

    List* list_ = nullptr;
    std::size_t slot_ = 0;
  };
  using iterator = Iterator<TombstoneList, T>;
  using const_iterator = Iterator<const TombstoneList, const T>;

  [[nodiscard]] std::size_t size() const { return values_.size() - removedCount(); }
  [[nodiscard]] std::size_t slots() const { return values_.size(); }
  void reserve(std::size_t size) { values_.reserve(size); }

  [[nodiscard]] T& at(std::size_t slot) { return values_[slot]; }
  [[nodiscard]] const T& at(std::size_t slot) const { return values_[slot]; }

  /// The slot at a 1-based index. Throws `InvalidIndex` outside the list.
  [[nodiscard]] std::size_t slotOf(std::int32_t place) const {
    if (place < 1 || static_cast<std::size_t>(place) > size()) {
      throw Error(ErrorCode::InvalidIndex,
                  "no entry " + std::to_string(place) + " in a list of " + std::to_string(size()));
    }
    const auto zeroBased = static_cast<std::size_t>(place) - 1;
    return removed_ ? removed_->slotOf(zeroBased) : zeroBased;
  }

  /// Reserves room for one more value, so that `append` cannot fail.
  void reserveNext() {
    if (values_.size() == values_.capacity()) values_.reserve(values_.size() * 2 + 1);
    if (removed_) removed_.orCreate().reserveNext();
  }

  /// Appends a value constructed from `arguments`. Requires reserved room.
  template <class... Arguments>
  void append(Arguments&&... arguments) {
    values_.emplace_back(std::forward<Arguments>(arguments)...);
    if (removed_) removed_.orCreate().grow();
  }

  /// Removes the value in `slot`; if the list is compacted, calls `renumber(newSlot)`, where
  /// `newSlot` gives the new slot of an old one. A failure changes nothing.
  template <class Renumber>
  void remove(std::size_t slot, const Renumber& renumber) {
    if (!removed_ && slot + 1 == values_.size()) {
      values_.pop_back();
      return;
    }
    removed_.orCreate().add(slot, values_.size());
    values_[slot] = T();
    if (removed_->count() <= size()) return;
    renumber([this](std::size_t old) { return removed_->placeOf(old); });
    closeUp();
  }

  [[nodiscard]] iterator begin() { return {this, 0}; }
  [[nodiscard]] iterator end() { return {this, values_.size()}; }
  [[nodiscard]] const_iterator begin() const { return {this, 0}; }
  [[nodiscard]] const_iterator end() const { return {this, values_.size()}; }

 private:
  [[nodiscard]] std::size_t removedCount() const { return removed_ ? removed_->count() : 0; }
  [[nodiscard]] bool isRemoved(std::size_t slot) const {
    return removed_ && removed_->contains(slot);
  }

  void closeUp() {
    std::size_t used = 0;
    for (std::size_t slot = 0; slot < values_.size(); ++slot) {
      if (removed_->contains(slot)) continue;
      if (used != slot) values_[used] = std::move(values_[slot]);
      ++used;
    }
    values_.erase(values_.begin() + static_cast<std::ptrdiff_t>(used), values_.end());
    removed_.reset();
  }

  std::vector<T> values_;
  LazyPart<Tombstones> removed_;
};

}  // namespace aq
