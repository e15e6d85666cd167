#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

namespace aq {

/// Maps the points of a trace to one-third-octave bands 2 to 50, in ascending order.
class BandPlan {
 public:
  /// For third-octave data: each point is a band, with its centre at 10^(n/10) Hz, at its nominal
  /// frequency or at its base-2 frequency (IEC 61260-1). Leaves out bands outside 2 to 50, and
  /// points of finite frequency after the last band, such as overall levels. Fails for any other
  /// point that is not a band, for bands that do not ascend, and if no band is from 2 to 50.
  static BandPlan ofOctaves(std::span<const double> x);

  /// For narrow bands: sums the points from `start` up to, but not including, `end`, which is at
  /// most the size of `x`; a point that a band edge crosses is divided in proportion. Uses only
  /// bands that the points cover and that are at least three points wide. Fails if there is no such
  /// band, or if the frequencies do not ascend.
  static BandPlan ofBins(std::span<const double> x, std::size_t start, std::size_t end);

  [[nodiscard]] std::size_t size() const { return parts_.size(); }
  [[nodiscard]] std::int16_t band(std::size_t place) const { return parts_[place].band; }
  /// Whether the bands are consecutive.
  [[nodiscard]] bool isWhole() const;

  /// The value of the band at an index.
  [[nodiscard]] double value(std::size_t place, std::span<const double> y) const {
    const Part& part = parts_[place];
    double sum = y[part.first] * part.ofFirst;
    if (part.last == part.first) return sum;
    for (std::size_t i = part.first + 1; i < part.last; ++i) sum += y[i];
    return sum + y[part.last] * part.ofLast;
  }

 private:
  struct Part {
    std::int16_t band;
    std::size_t first;  // index of the first point
    std::size_t last;   // index of the last point
    double ofFirst;     // the share of the first point that is in the band
    double ofLast;      // the share of the last point that is in the band
  };

  std::vector<Part> parts_;
};

}  // namespace aq
