#pragma once

#include <cstddef>
#include <cstdint>
#include <iterator>
#include <utility>

namespace aq {

/// Visits the numbers of a range for which a `Series` has an entry: calls its `contains(number)`
/// and yields its `entry(number)`.
template <class Series>
class NumberWalk {
 public:
  using iterator_category = std::input_iterator_tag;  // entries are created on demand
  using value_type = decltype(std::declval<const Series&>().entry(0));
  using difference_type = std::ptrdiff_t;
  using pointer = void;
  using reference = value_type;

  NumberWalk() = default;
  NumberWalk(const Series* series, std::int32_t number, std::int32_t end)
      : series_(series), number_(number), end_(end) {
    skipMissing();
  }

  value_type operator*() const { return series_->entry(static_cast<std::int16_t>(number_)); }
  NumberWalk& operator++() {
    ++number_;
    skipMissing();
    return *this;
  }
  NumberWalk operator++(int) { return std::exchange(*this, ++NumberWalk(*this)); }
  friend bool operator==(const NumberWalk&, const NumberWalk&) = default;

 private:
  void skipMissing() {
    while (number_ < end_ && !series_->contains(number_)) ++number_;
  }

  const Series* series_ = nullptr;
  std::int32_t number_ = 0;
  std::int32_t end_ = 0;
};

}  // namespace aq
