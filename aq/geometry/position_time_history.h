#pragma once

#include <cstddef>
#include <cstdint>
#include <iterator>
#include <memory>
#include <utility>

#include "aq/core/export.h"
#include "aq/core/time.h"
#include "aq/detail/numbered_series.h"
#include "aq/geometry/position.h"

namespace aq {

/// The ordered series of a source's positions, shared with the caller. Expects samples in ascending
/// order of time; neither sorts nor checks them. May hold more than the 32767 samples that `Count`
/// can report.
class AQ_API AQ_PositionTimeHistory {
  using Placed = TombstoneList<std::shared_ptr<AQ_Position>>::const_iterator;

 public:
  /// Visits the samples in index order.
  class Walk {
   public:
    using iterator_category = std::input_iterator_tag;
    using value_type = std::pair<std::int32_t, std::shared_ptr<AQ_Position>>;
    using difference_type = std::ptrdiff_t;
    using pointer = void;
    using reference = std::pair<std::int32_t, const std::shared_ptr<AQ_Position>&>;

    Walk() = default;
    explicit Walk(Placed at) : at_(at) {}

    reference operator*() const { return {place_, *at_}; }
    Walk& operator++() {
      ++at_;
      ++place_;
      return *this;
    }
    Walk operator++(int) { return std::exchange(*this, ++Walk(*this)); }
    friend bool operator==(const Walk& a, const Walk& b) { return a.at_ == b.at_; }

   private:
    Placed at_;
    std::int32_t place_ = 1;
  };

  /// A deep copy in index order, numbered from 1. Throws `Overflow` above 32767 samples.
  [[nodiscard]] std::shared_ptr<AQ_PositionTimeHistory> Copy() const;

  /// The sample at a 1-based index; throws `InvalidIndex` out of range.
  [[nodiscard]] std::shared_ptr<AQ_Position> Position(std::int32_t nRecord) const {
    return positions_.atPlace(nRecord);
  }

  /// Appends a sample under a record number, and removes any sample already stored under that
  /// number. Index and number may thus differ; hosts rely on this.
  void Position(std::int32_t nRecord, std::shared_ptr<AQ_Position> aqPosition) {
    positions_.store(nRecord, std::move(aqPosition));
  }

  /// Of the first two neighbouring samples that enclose a time of day, the nearer one, or the later
  /// one if both are equally near. No object if no two neighbours enclose the time: nothing is
  /// extrapolated. Throws `Overflow` above 32767 samples.
  [[nodiscard]] std::shared_ptr<AQ_Position> PositionAt(const AQ_Time& aqTime) const;

  /// Whether a time of day lies between those of the first and the last sample, inclusive.
  /// Throws `InvalidIndex` for an empty history, `Overflow` above 32767 samples.
  [[nodiscard]] bool GoodTime(const AQ_Time& aqTime) const;

  /// The number of samples. Throws `Overflow` above 32767.
  [[nodiscard]] std::int16_t Count() const { return positions_.count(); }

  /// A loop yields the samples as pairs of index and position, in index order. Storing a sample
  /// invalidates iterators. `contains` tells whether an index exists.
  [[nodiscard]] Walk begin() const { return Walk(positions_.placed().begin()); }
  [[nodiscard]] Walk end() const { return Walk(positions_.placed().end()); }
  [[nodiscard]] bool contains(std::int32_t place) const {
    return place >= 1 && static_cast<std::size_t>(place) <= positions_.size();
  }

 private:
  NumberedSeries<AQ_Position> positions_;
};

}  // namespace aq
