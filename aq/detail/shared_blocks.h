#pragma once

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <new>
#include <utility>

#include "aq/core/platform.h"

namespace aq {

/// Memory in large pages for the blocks of a long file, handed out from start to end.
class BlockMemory {
 public:
  /// `pages` is at least 1.
  explicit BlockMemory(std::size_t pages)
      : size_(pages * platform::kLargePage),
        bytes_(static_cast<std::byte*>(::operator new(size_, kAlignment))) {
    platform::preferLargePages(bytes_, size_);
  }
  BlockMemory(const BlockMemory&) = delete;
  BlockMemory& operator=(const BlockMemory&) = delete;
  ~BlockMemory() { ::operator delete(bytes_, kAlignment); }

  /// Memory for any type without a special alignment; null if too little is left.
  [[nodiscard]] void* take(std::size_t size) {
    size = (size + alignof(std::max_align_t) - 1) / alignof(std::max_align_t) *
           alignof(std::max_align_t);
    if (size > size_ - used_) return nullptr;
    return bytes_ + std::exchange(used_, used_ + size);
  }

  [[nodiscard]] bool has(const void* place) const {
    const std::less<> before;
    return !before(place, bytes_) && before(place, bytes_ + size_);
  }

 private:
  static constexpr std::align_val_t kAlignment{platform::kLargePage};

  std::size_t size_;
  std::size_t used_ = 0;
  std::byte* bytes_;
};

/// Allocates from `memory`, which it keeps alive; once that is full, allocates as usual.
template <class T>
struct BlockAllocator {
  using value_type = T;

  explicit BlockAllocator(std::shared_ptr<BlockMemory> its) : memory(std::move(its)) {}
  template <class Other>
  explicit(false) BlockAllocator(const BlockAllocator<Other>& other) : memory(other.memory) {}

  [[nodiscard]] T* allocate(std::size_t count) {
    void* const place = memory->take(count * sizeof(T));
    return place != nullptr ? static_cast<T*>(place) : std::allocator<T>().allocate(count);
  }
  void deallocate(T* place, std::size_t count) {
    if (!memory->has(place)) std::allocator<T>().deallocate(place, count);
  }
  template <class Other>
  [[nodiscard]] bool operator==(const BlockAllocator<Other>& other) const {
    return memory == other.memory;
  }

  std::shared_ptr<BlockMemory> memory;
};

/// Creates shared objects for the records of a file, with one allocation for many of them. An
/// object that outlives the others keeps its whole block alive, including what its neighbours hold.
/// If a file has megabytes of objects, that object may also keep the memory of most others
/// allocated.
template <class T>
class SharedBlocks {
 public:
  SharedBlocks() = default;
  /// For a file that claims to have this many records; a claim above 32767 is treated as 32767.
  explicit SharedBlocks(std::int32_t claim)
      : expected_(static_cast<std::size_t>(std::clamp(claim, 0, 32767))) {}

  /// A new object.
  [[nodiscard]] std::shared_ptr<T> next() {
    if (used_ == kBlock) {
      block_ = newBlock();
      used_ = 0;
    }
    T* const object = &(*block_)[used_++];
    // The last object of a block takes this reference to it, so that no reference remains here.
    return used_ == kBlock ? std::shared_ptr<T>(std::move(block_), object)
                           : std::shared_ptr<T>(block_, object);
  }

 private:
  static constexpr std::size_t kBlock = 32;
  static constexpr std::size_t kTrusted = 32 * kBlock;  // records after which the claim is believed
  using Block = std::array<T, kBlock>;

  [[nodiscard]] std::shared_ptr<Block> newBlock() {
    created_ += kBlock;
    if (created_ == kTrusted && created_ < expected_) {
      const std::size_t bytes = (expected_ - created_) * sizeof(T);
      // A last page that is less than 70 % full costs more than it saves.
      const std::size_t pages = (bytes + platform::kLargePage * 3 / 10) / platform::kLargePage;
      if (pages != 0) memory_ = std::make_shared<BlockMemory>(pages);
    }
    if (!memory_) return std::make_shared<Block>();
    return std::allocate_shared<Block>(BlockAllocator<Block>(memory_));
  }

  std::shared_ptr<Block> block_;
  std::size_t used_ = kBlock;
  std::size_t created_ = 0;
  std::size_t expected_ = 0;
  std::shared_ptr<BlockMemory> memory_;
};

}  // namespace aq
