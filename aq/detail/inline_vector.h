#pragma once

#include <algorithm>
#include <array>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <type_traits>
#include <utility>

namespace aq {

/// A vector of plain cells that stores up to `kInline` of them in place, so that most objects need
/// no allocation.
template <class Cell, std::size_t kInline>
class InlineVector {
  static_assert(std::is_trivially_copyable_v<Cell>);

 public:
  InlineVector() = default;
  InlineVector(const InlineVector& other) { assign(other.data(), other.data() + other.size()); }
  InlineVector(InlineVector&& other) noexcept { swap(other); }
  InlineVector& operator=(InlineVector other) noexcept {
    swap(other);
    return *this;
  }
  ~InlineVector() = default;

  [[nodiscard]] std::size_t size() const { return size_; }
  [[nodiscard]] bool empty() const { return size() == 0; }
  [[nodiscard]] Cell* data() { return more_ ? more_.get() : inline_.data(); }
  [[nodiscard]] const Cell* data() const { return more_ ? more_.get() : inline_.data(); }
  [[nodiscard]] Cell* begin() { return data(); }
  [[nodiscard]] Cell& operator[](std::size_t i) { return data()[i]; }
  [[nodiscard]] const Cell& operator[](std::size_t i) const { return data()[i]; }
  [[nodiscard]] Cell& front() { return *data(); }

  void assign(const Cell* first, const Cell* last) {
    reserve(static_cast<std::size_t>(last - first));
    std::copy(first, last, data());
    size_ = static_cast<std::uint32_t>(last - first);
  }

  void insert(const Cell* place, std::size_t count, Cell value) {
    const std::ptrdiff_t at = place - data();
    reserve(size() + count);
    const auto added = static_cast<std::ptrdiff_t>(count);
    Cell* const end = data() + size();
    std::copy_backward(data() + at, end, end + added);
    std::fill_n(data() + at, count, value);
    size_ += static_cast<std::uint32_t>(count);
  }

  /// Adds default cells.
  void resize(std::size_t larger) { insert(data() + size(), larger - size(), Cell()); }

 private:
  void swap(InlineVector& other) noexcept {
    std::swap(more_, other.more_);
    std::swap(size_, other.size_);
    std::swap(inline_, other.inline_);
  }

  void reserve(std::size_t size) {
    const std::size_t room = more_ ? std::bit_ceil(this->size()) : kInline;
    if (size <= room) return;
    auto more = std::make_unique<Cell[]>(std::bit_ceil(size));
    std::copy_n(data(), size_, more.get());
    more_ = std::move(more);
  }

  std::unique_ptr<Cell[]> more_;  // instead of the cells in place
  std::uint32_t size_ = 0;
  std::array<Cell, kInline> inline_{};
};

}  // namespace aq
