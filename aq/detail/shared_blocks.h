#pragma once

#include <array>
#include <cstddef>
#include <memory>
#include <utility>

namespace aq {

/// Creates shared objects for the records of a file, with one allocation for many of them. An
/// object that outlives the others keeps its whole block alive, including what its neighbours hold.
template <class T>
class SharedBlocks {
 public:
  /// A new object.
  [[nodiscard]] std::shared_ptr<T> next() {
    if (used_ == kBlock) {
      block_ = std::make_shared<Block>();
      used_ = 0;
    }
    T* const object = &(*block_)[used_++];
    // The last object takes over the block.
    return used_ == kBlock ? std::shared_ptr<T>(std::move(block_), object)
                           : std::shared_ptr<T>(block_, object);
  }

 private:
  static constexpr std::size_t kBlock = 32;
  using Block = std::array<T, kBlock>;

  std::shared_ptr<Block> block_;
  std::size_t used_ = kBlock;
};

}  // namespace aq
