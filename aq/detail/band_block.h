#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

namespace aq {

/// One cell per band in one block of memory, from the lowest band touched to the highest; untouched
/// cells in between are default-constructed.
template <class Cell, class Cells = std::vector<Cell>>
class BandBlock {
 public:
  [[nodiscard]] bool empty() const { return cells_.empty(); }
  [[nodiscard]] std::size_t size() const { return cells_.size(); }
  [[nodiscard]] std::int16_t first() const { return first_; }
  [[nodiscard]] std::span<Cell> all() { return {cells_.data(), cells_.size()}; }
  [[nodiscard]] std::span<const Cell> all() const { return {cells_.data(), cells_.size()}; }

  /// The cell of `band`; `nullptr` outside the block.
  [[nodiscard]] const Cell* find(std::int16_t band) const {
    const int at = band - first_;
    return at < 0 || at >= static_cast<int>(cells_.size()) ? nullptr : &cells_[index(at)];
  }

  /// The cell of `band`; grows the block to hold it.
  [[nodiscard]] Cell& touch(std::int16_t band) {
    if (cells_.empty()) first_ = band;
    const int at = band - first_;
    if (at < 0) {
      cells_.insert(cells_.begin(), index(-at), Cell());
      first_ = band;
      return cells_.front();
    }
    if (index(at) >= cells_.size()) cells_.resize(index(at) + 1);
    return cells_[index(at)];
  }

  /// Replaces the block with these cells; the first one is for band `first`.
  void assign(std::int16_t first, std::span<const Cell> cells) {
    cells_.assign(cells.data(), cells.data() + cells.size());
    first_ = first;
  }

  /// Replaces the block with `count` cells of unspecified value, the first one for band `first`.
  [[nodiscard]] std::span<Cell> renew(std::int16_t first, std::size_t count) {
    cells_.renew(count);
    first_ = first;
    return all();
  }

 private:
  static std::size_t index(int at) { return static_cast<std::size_t>(at); }

  [[no_unique_address]] Cells cells_;  // its padding may hold `first_`
  std::int16_t first_ = 0;
};

}  // namespace aq
