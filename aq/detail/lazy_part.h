#pragma once

#include <memory>
#include <utility>

namespace aq {

/// A part that most objects never need; created on first use, copied with its owner.
template <class T>
class LazyPart {
 public:
  LazyPart() = default;
  LazyPart(const LazyPart& other)
      : part_(other.part_ ? std::make_unique<T>(*other.part_) : nullptr) {}
  LazyPart(LazyPart&&) noexcept = default;
  LazyPart& operator=(LazyPart other) noexcept {
    std::swap(part_, other.part_);
    return *this;
  }
  ~LazyPart() = default;

  [[nodiscard]] explicit operator bool() const { return part_ != nullptr; }
  [[nodiscard]] const T& operator*() const { return *part_; }
  [[nodiscard]] const T* operator->() const { return part_.get(); }
  [[nodiscard]] T& orCreate() {
    if (!part_) part_ = std::make_unique<T>();
    return *part_;
  }
  void reset() { part_.reset(); }

 private:
  std::unique_ptr<T> part_;
};

}  // namespace aq
