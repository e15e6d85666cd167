#pragma once

#include <algorithm>
#include <cstdint>
#include <functional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <utility>

#include "aq/core/error.h"
#include "aq/detail/lazy_part.h"
#include "aq/detail/tombstone_list.h"

namespace aq {

/// An ordered list of values, numbered from 1; each may have a text key. Lookup by key takes
/// constant time on average; keys are compared byte by byte. Copying a collection copies its
/// values.
template <class T>
class Collection {
 public:
  void Add(T value) {
    slots_.reserveNext();
    slots_.append(std::move(value));
  }

  /// Constructs a value from `arguments` at the end.
  template <class... Arguments>
  void Emplace(Arguments&&... arguments) {
    slots_.reserveNext();
    slots_.append(std::forward<Arguments>(arguments)...);
  }

  /// Throws `InvalidArgument`, and adds nothing, if the key already exists.
  void Add(T value, std::string_view key) {
    slots_.reserveNext();
    if (!keys_.orCreate().emplace(key, slots_.slots()).second) {
      throw Error(ErrorCode::InvalidArgument, "the collection already has the key " + shown(key));
    }
    slots_.append(std::move(value));
  }

  /// The entry at `place`, from 1 to `Count()`. Throws `InvalidIndex` outside that range.
  [[nodiscard]] T& Item(std::int32_t place) { return slots_.at(slots_.slotOf(place)); }
  [[nodiscard]] const T& Item(std::int32_t place) const { return slots_.at(slots_.slotOf(place)); }

  /// The entry with that key. Throws `InvalidArgument` if there is none.
  [[nodiscard]] T& Item(std::string_view key) { return slots_.at(entryOf(key)->second); }
  [[nodiscard]] const T& Item(std::string_view key) const {
    return slots_.at(entryOf(key)->second);
  }

  [[nodiscard]] std::int32_t Count() const { return static_cast<std::int32_t>(slots_.size()); }

  /// Throws in the same cases as `Item`.
  void Remove(std::int32_t place) {
    const std::size_t slot = slots_.slotOf(place);
    Keys& keys = keys_.orCreate();
    const auto key = std::find_if(keys.begin(), keys.end(),
                                  [slot](const auto& entry) { return entry.second == slot; });
    removeSlot(slot);
    if (key != keys.end()) keys.erase(key);
  }
  void Remove(std::string_view key) {
    const auto entry = entryOf(key);
    removeSlot(entry->second);
    keys_.orCreate().erase(entry);
  }

  [[nodiscard]] auto begin() { return slots_.begin(); }
  [[nodiscard]] auto end() { return slots_.end(); }
  [[nodiscard]] auto begin() const { return slots_.begin(); }
  [[nodiscard]] auto end() const { return slots_.end(); }

  /// Whether an entry has that key.
  [[nodiscard]] bool contains(std::string_view key) const { return keys_ && keys_->contains(key); }
  void reserve(std::size_t count) { slots_.reserve(count); }

 private:
  struct Hash {
    using is_transparent = void;
    std::size_t operator()(std::string_view key) const {
      return std::hash<std::string_view>()(key);
    }
  };
  using Keys = std::unordered_map<std::string, std::size_t, Hash, std::equal_to<>>;

  [[nodiscard]] auto entryOf(std::string_view key) const {
    if (!contains(key)) {
      throw Error(ErrorCode::InvalidArgument, "the collection has no entry " + shown(key));
    }
    return keys_->find(key);
  }

  void removeSlot(std::size_t slot) {
    slots_.remove(slot, [this](const auto& newSlot) {
      for (auto& [key, keySlot] : keys_.orCreate()) keySlot = newSlot(keySlot);
    });
  }

  TombstoneList<T> slots_;
  LazyPart<Keys> keys_;
};

}  // namespace aq
