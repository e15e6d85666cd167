#pragma once

#include <utility>

#include "component/com.h"

namespace aq::com {

/// A reference to a host's or the component's object.
template <class T>
class Held {
 public:
  Held() = default;
  /// Takes over a reference.
  explicit Held(T* object) : object_(object) {}
  [[nodiscard]] static Held share(T* object) {
    if (object != nullptr) object->AddRef();
    return Held(object);
  }
  Held(Held&& other) noexcept : object_(std::exchange(other.object_, nullptr)) {}
  Held& operator=(Held&& other) noexcept {
    std::swap(object_, other.object_);
    return *this;
  }
  Held(const Held&) = delete;
  Held& operator=(const Held&) = delete;
  ~Held() {
    if (object_ != nullptr) object_->Release();
  }

  [[nodiscard]] T* get() const { return object_; }
  [[nodiscard]] T* release() { return std::exchange(object_, nullptr); }
  /// Where a call stores a reference. Must be empty.
  [[nodiscard]] T** put() { return &object_; }
  T* operator->() const { return object_; }
  T& operator*() const { return *object_; }
  explicit operator bool() const { return object_ != nullptr; }

 private:
  T* object_ = nullptr;
};

}  // namespace aq::com
