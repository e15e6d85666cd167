#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <utility>

#include "aq/core/count.h"
#include "aq/core/error.h"
#include "aq/core/number_index.h"
#include "aq/core/ordered_slots.h"

namespace aq {

/// Shared objects in order, each under a record number. Storing under a number that is taken
/// removes the old object and appends the new one: its place is then the last.
template <class T>
class NumberedSeries {
 public:
  using Object = std::shared_ptr<T>;

  void store(std::int32_t number, Object&& object) {
    const std::size_t slot = index_.find(number);
    slots_.makeRoom();
    index_.makeRoom(number);
    if (slot != NumberIndex::kNoSlot) {
      slots_.remove(slot, [this](const auto& newSlot) { index_.renumber(newSlot); });
    }
    slots_.append(std::move(object));
    index_.set(number, slots_.slots() - 1);
  }

  /// The object under `number`; none throws `InvalidArgument`.
  [[nodiscard]] const Object& at(std::int32_t number) const {
    const std::size_t slot = index_.find(number);
    if (slot == NumberIndex::kNoSlot) {
      throw Error(ErrorCode::InvalidArgument, "no record " + std::to_string(number));
    }
    return slots_.at(slot);
  }

  /// The object at a place from 1 on; throws `InvalidIndex` elsewhere.
  [[nodiscard]] const Object& atPlace(std::int32_t place) const {
    return slots_.at(slots_.slotOf(place));
  }

  [[nodiscard]] std::size_t size() const { return slots_.size(); }

  /// The size as the 16-bit count of the interface; throws `Overflow` above 32767.
  [[nodiscard]] std::int16_t count() const { return count16(size()); }

  [[nodiscard]] auto begin() const { return slots_.begin(); }
  [[nodiscard]] auto end() const { return slots_.end(); }

 private:
  OrderedSlots<Object> slots_;
  NumberIndex index_;
};

}  // namespace aq
