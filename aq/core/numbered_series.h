#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <utility>

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

  void store(std::int32_t number, Object object) {
    const auto slot = index_.find(number);
    slots_.makeRoom();
    index_.makeRoom(number);
    if (slot) slots_.remove(*slot, [this](const auto& newSlot) { index_.renumber(newSlot); });
    slots_.append(std::move(object));
    index_.set(number, slots_.slots() - 1);
  }

  /// The object under `number`; none throws `InvalidArgument`.
  [[nodiscard]] const Object& at(std::int32_t number) const {
    const auto slot = index_.find(number);
    if (!slot) {
      throw Error(ErrorCode::InvalidArgument, "no record " + std::to_string(number));
    }
    return slots_.at(*slot);
  }

  [[nodiscard]] bool contains(std::int32_t number) const { return index_.find(number).has_value(); }

  [[nodiscard]] std::size_t size() const { return slots_.size(); }

  /// The size as the 16-bit count of the interface; throws `Overflow` above 32767.
  [[nodiscard]] std::int16_t count() const {
    if (size() > 32767) throw Error(ErrorCode::Overflow, "more than 32767 records to count");
    return static_cast<std::int16_t>(size());
  }

  [[nodiscard]] auto begin() const { return slots_.begin(); }
  [[nodiscard]] auto end() const { return slots_.end(); }

 private:
  OrderedSlots<Object> slots_;
  NumberIndex index_;
};

}  // namespace aq
