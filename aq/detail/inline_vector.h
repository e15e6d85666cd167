#pragma once

#include <algorithm>
#include <array>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <memory>
#include <type_traits>
#include <utility>

namespace aq {

/// A vector of plain cells that stores up to `kInline` of them in place, so that most objects need
/// no allocation. Callers must not store more cells than `Size` can count.
template <class Cell, std::size_t kInline, class Size = std::uint32_t>
class InlineVector {
  static_assert(std::is_trivially_copyable_v<Cell> && sizeof(Cell) * kInline >= sizeof(Cell*));

 public:
  InlineVector() = default;
  InlineVector(const InlineVector& other) { assign(other.data(), other.data() + other.size()); }
  InlineVector(InlineVector&& other) noexcept { swap(other); }
  InlineVector& operator=(InlineVector other) noexcept {
    swap(other);
    return *this;
  }
  ~InlineVector() { free(); }

  [[nodiscard]] std::size_t size() const { return size_; }
  [[nodiscard]] bool empty() const { return size() == 0; }
  [[nodiscard]] Cell* data() { return isInPlace() ? inPlace_.data() : elsewhere(); }
  [[nodiscard]] const Cell* data() const { return isInPlace() ? inPlace_.data() : elsewhere(); }
  [[nodiscard]] Cell* begin() { return data(); }
  [[nodiscard]] Cell& operator[](std::size_t i) { return data()[i]; }
  [[nodiscard]] const Cell& operator[](std::size_t i) const { return data()[i]; }
  [[nodiscard]] Cell& front() { return *data(); }

  void assign(const Cell* first, const Cell* last) {
    const auto size = static_cast<std::size_t>(last - first);
    if (isInPlace() && size <= kInline) {
      std::copy(first, last, inPlace_.data());
      size_ = static_cast<Size>(size);
      return;
    }
    InlineVector assigned;
    assigned.grow(size);
    std::copy(first, last, assigned.data());
    swap(assigned);
  }

  /// Replaces the cells with `size` cells of unspecified value.
  void renew(std::size_t size) {
    free();
    size_ = 0;
    grow(size);
  }

  void insert(const Cell* place, std::size_t count, Cell value) {
    const std::ptrdiff_t at = place - data();
    const std::size_t before = size();
    grow(before + count);
    std::copy_backward(data() + at, data() + before, data() + size());
    std::fill_n(data() + at, count, value);
  }

  /// Adds default cells.
  void resize(std::size_t larger) { insert(data() + size(), larger - size(), Cell()); }

 private:
  [[nodiscard]] bool isInPlace() const { return size_ <= kInline; }
  [[nodiscard]] Cell* elsewhere() const {
    Cell* cells = nullptr;
    std::memcpy(&cells, inPlace_.data(), sizeof cells);
    return cells;
  }
  void free() {
    if (!isInPlace()) std::unique_ptr<Cell[]>(elsewhere()).reset();
  }

  void swap(InlineVector& other) noexcept {
    std::swap(size_, other.size_);
    std::swap(inPlace_, other.inPlace_);
  }

  /// Changes the size to a larger one; the values of the new cells are unspecified.
  void grow(std::size_t size) {
    const std::size_t room = isInPlace() ? kInline : std::bit_ceil(this->size());
    if (size > room) {
      auto larger = std::make_unique<Cell[]>(std::bit_ceil(size));
      std::copy_n(data(), size_, larger.get());
      free();
      const Cell* const cells = larger.release();
      std::memcpy(inPlace_.data(), &cells, sizeof cells);
    }
    size_ = static_cast<Size>(size);
  }

  alignas(Cell*) std::array<Cell, kInline> inPlace_{};  // a pointer if the cells do not fit
  Size size_ = 0;
};

}  // namespace aq
