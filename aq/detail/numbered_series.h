#pragma once

#include <cstddef>
#include <cstdint>
#include <iterator>
#include <memory>
#include <string>
#include <unordered_map>
#include <utility>
#include <vector>

#include "aq/core/error.h"
#include "aq/core/export.h"
#include "aq/detail/number_range.h"
#include "aq/detail/tombstone_list.h"

namespace aq {

/// A number that resets to 0 when moved from.
struct Counter {
  std::size_t value = 0;

  Counter() = default;
  Counter(const Counter&) = default;
  Counter(Counter&& other) noexcept : value(std::exchange(other.value, 0)) {}
  Counter& operator=(const Counter&) = default;
  Counter& operator=(Counter&& other) noexcept {
    value = std::exchange(other.value, 0);
    return *this;
  }
  ~Counter() = default;
};

/// Throws `InvalidArgument`. Out of line to keep `NumberedSeries::at` small enough to inline.
[[noreturn]] AQ_API void throwNoRecord(std::int32_t number);

/// Finds the slot of a record number. As long as records are numbered n, n+1, n+2 …, the slot
/// follows from the number and no table is needed.
class AQ_API NumberIndex {
 public:
  static constexpr std::size_t kNoSlot = SIZE_MAX;  // not an optional, for speed

  [[nodiscard]] std::size_t find(std::int32_t number) const {
    if (!isRun()) return findInTable(number);
    if (number < first_ || number >= afterRun()) return kNoSlot;
    return static_cast<std::size_t>(std::int64_t{number} - first_);
  }

  /// Whether the number is the next one of the run. If so, `lengthen` records it in the next slot.
  [[nodiscard]] bool continues(std::int32_t number) const {
    return isRun() && length_.value != 0 && number == afterRun();
  }
  void lengthen() { ++length_.value; }

  /// Reserves room for a number, so that `set` cannot fail. Between the two calls, only
  /// `renumber` may be called.
  void reserveNext(std::int32_t number) {
    const bool followsRun = length_.value == 0 || number == afterRun() || number == afterRun() - 1;
    if (!isRun() || !followsRun) reserveInTable(number);
  }

  /// Records that the number is in `slot`, the last one.
  void set(std::int32_t number, std::size_t slot);

  /// All numbers, ascending, each with its slot; empty while no table is needed.
  [[nodiscard]] std::vector<std::pair<std::int32_t, std::size_t>> sorted() const;
  [[nodiscard]] std::int32_t first() const { return first_; }

  /// Call after compacting the slots: `newSlot` gives the new slot of an old one.
  template <class NewSlot>
  void renumber(const NewSlot& newSlot) {
    for (auto& [number, slot] : table_) slot = newSlot(slot);
  }

 private:
  [[nodiscard]] std::size_t findInTable(std::int32_t number) const;
  void reserveInTable(std::int32_t number);
  [[nodiscard]] bool isRun() const { return table_.empty(); }
  [[nodiscard]] std::int64_t afterRun() const {
    return first_ + static_cast<std::int64_t>(length_.value);
  }

  std::int32_t first_ = 0;  // first number of the run, whose numbers are in slots 0, 1, 2 …
  Counter length_;          // how many numbers the run has
  std::unordered_map<std::int32_t, std::size_t> table_;  // used instead of a run
};

/// Shared objects in the order in which they were stored, each with a record number. Storing under
/// an existing number removes the old object and appends the new one at the end. Iterators yield
/// the numbers as `Number`.
template <class T, class Number = std::int32_t>
class NumberedSeries {
 public:
  using Object = std::shared_ptr<T>;

  /// Visits the objects in ascending order of their numbers.
  class Walk {
   public:
    using iterator_category = std::input_iterator_tag;
    using value_type = std::pair<Number, Object>;
    using difference_type = std::ptrdiff_t;
    using pointer = void;
    using reference = std::pair<Number, const Object&>;

    Walk() = default;
    Walk(const NumberedSeries* series, std::size_t at) : series_(series), at_(at) {
      if (auto sorted = series->index_.sorted(); !sorted.empty()) {
        sorted_ = std::make_shared<const Sorted>(std::move(sorted));
      }
    }
    [[nodiscard]] static Walk end(const NumberedSeries* series) {
      Walk walk;
      walk.series_ = series;
      walk.at_ = series->size();
      return walk;
    }

    reference operator*() const {
      if (sorted_) {
        const auto& [number, slot] = (*sorted_)[at_];
        return {static_cast<Number>(number), series_->slots_.at(slot)};
      }
      const std::int64_t number = std::int64_t{series_->index_.first()} + std::int64_t(at_);
      return {static_cast<Number>(number), series_->slots_.at(at_)};
    }
    Walk& operator++() {
      ++at_;
      return *this;
    }
    Walk operator++(int) { return std::exchange(*this, ++Walk(*this)); }
    friend bool operator==(const Walk& a, const Walk& b) { return a.at_ == b.at_; }

   private:
    using Sorted = std::vector<std::pair<std::int32_t, std::size_t>>;

    const NumberedSeries* series_ = nullptr;
    std::size_t at_ = 0;
    std::shared_ptr<const Sorted> sorted_;  // set when the numbers do not follow the slots
  };

  void store(std::int32_t number, Object&& object) {
    slots_.reserveNext();
    const bool continues = index_.continues(number);
    if (!continues) makeRoomFor(number);
    slots_.append(std::move(object));
    if (continues) {
      index_.lengthen();
    } else {
      index_.set(number, slots_.slots() - 1);
    }
  }

  [[nodiscard]] bool contains(std::int32_t number) const {
    return index_.find(number) != NumberIndex::kNoSlot;
  }

  /// The object with that number; throws `InvalidArgument` if there is none.
  [[nodiscard]] const Object& at(std::int32_t number) const {
    const std::size_t slot = index_.find(number);
    if (slot == NumberIndex::kNoSlot) throwNoRecord(number);
    return slots_.at(slot);
  }

  /// The object at a 1-based index; throws `InvalidIndex` out of range.
  [[nodiscard]] const Object& atPlace(std::int32_t place) const {
    return slots_.at(slots_.slotOf(place));
  }

  [[nodiscard]] std::size_t size() const { return slots_.size(); }

  /// The size as a 16-bit count, as the interface returns it; throws `Overflow` above 32767.
  [[nodiscard]] std::int16_t count() const { return count16(size()); }

  [[nodiscard]] Walk begin() const { return {this, 0}; }
  [[nodiscard]] Walk end() const { return Walk::end(this); }

  /// The objects in order of their indices.
  [[nodiscard]] const TombstoneList<Object>& placed() const { return slots_; }

 private:
  /// Removes the object with that number, if there is one, and reserves room for the number.
  void makeRoomFor(std::int32_t number) {
    const std::size_t slot = index_.find(number);
    index_.reserveNext(number);
    if (slot == NumberIndex::kNoSlot) return;
    slots_.remove(slot, [this](const auto& newSlot) { index_.renumber(newSlot); });
  }

  TombstoneList<Object> slots_;
  NumberIndex index_;
};

}  // namespace aq
