#pragma once

#include <cstddef>
#include <cstdint>
#include <iterator>
#include <map>
#include <memory>
#include <utility>

#include "aq/core/export.h"
#include "aq/core/variant.h"

namespace aq {

/// The levels of one band across a series of spectra, by spectrum number.
class AQ_API AQ_Band {
  using Levels = std::map<double, Variant>;  // by record number; see `keyOf` in band.cpp

 public:
  /// Visits the levels in order of record number.
  class Walk {
   public:
    using iterator_category = std::input_iterator_tag;
    using value_type = std::pair<std::int32_t, Variant>;
    using difference_type = std::ptrdiff_t;
    using pointer = void;
    using reference = std::pair<std::int32_t, const Variant&>;

    Walk() = default;
    Walk(Levels::const_iterator at, Levels::const_iterator end) : at_(at), end_(end) {
      skipOthers();
    }

    reference operator*() const { return {static_cast<std::int32_t>(at_->first), at_->second}; }
    Walk& operator++() {
      ++at_;
      skipOthers();
      return *this;
    }
    Walk operator++(int) { return std::exchange(*this, ++Walk(*this)); }
    friend bool operator==(const Walk& a, const Walk& b) { return a.at_ == b.at_; }

   private:
    void skipOthers();

    Levels::const_iterator at_;
    Levels::const_iterator end_;
  };

  /// Never copies; hosts rely on it. Returns no object for an empty band, and throws `ObjectNotSet`
  /// for any other. To copy a band of a history, get it from the history again.
  [[nodiscard]] std::shared_ptr<AQ_Band> Copy() const;

  /// The level in the spectrum with that number; a number given as text is converted first. Reading
  /// throws `InvalidArgument` if there is no level.
  [[nodiscard]] Variant SPL(const Variant& nSpectrum) const;
  void SPL(const Variant& nSpectrum, const Variant& level);

  /// How many levels are stored.
  [[nodiscard]] std::int32_t Count() const { return static_cast<std::int32_t>(levels_.size()); }

  /// A loop yields the levels as pairs of record number and level, in ascending order of record
  /// number. Storing a level invalidates iterators. Only `SPL` reaches a level whose number is a
  /// fraction or does not fit in 32 bits.
  [[nodiscard]] Walk begin() const { return {levels_.begin(), levels_.end()}; }
  [[nodiscard]] Walk end() const { return {levels_.end(), levels_.end()}; }
  [[nodiscard]] bool contains(std::int32_t number) const { return levels_.contains(number); }

 private:
  Levels levels_;
};

}  // namespace aq
