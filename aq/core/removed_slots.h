#pragma once

#include <cstddef>
#include <vector>

#include "aq/core/export.h"

namespace aq {

/// Which slots of a list are removed but not yet closed up. Finds the slot of a place, that is
/// the n-th slot still in use, in logarithmic time.
class AQ_API RemovedSlots {
 public:
  [[nodiscard]] std::size_t count() const { return count_; }
  [[nodiscard]] bool contains(std::size_t slot) const { return count() != 0 && removed_[slot]; }

  /// Removes one of `slots` slots. The slot is in use. A failure changes nothing.
  void add(std::size_t slot, std::size_t slots);

  /// Makes room for one more slot, so that `grow` cannot fail.
  void makeRoom();

  /// A slot in use was appended to the list.
  void grow();

  /// The slot of a zero-based place below the number of slots in use.
  [[nodiscard]] std::size_t slotOf(std::size_t place) const;

  /// How many slots in use stand before `slot`.
  [[nodiscard]] std::size_t placeOf(std::size_t slot) const;

 private:
  void start(std::size_t slots);

  std::size_t count_ = 0;
  std::vector<bool> removed_;
  // A binary indexed tree: entry i, one-based, counts the slots in use among the last
  // (lowest set bit of i) slots up to i. Empty while nothing is removed.
  std::vector<std::size_t> inUse_;
};

}  // namespace aq
