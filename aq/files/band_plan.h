#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

namespace aq {

/// How the points of a trace make one-third-octave bands 2 to 50, in rising order.
class BandPlan {
 public:
  /// Of octave data: each point is a band, whose centre is 10^(n/10) Hz, its nominal or its base-2
  /// frequency (IEC 61260-1). Points behind the last that is one, as overall levels, are left out.
  /// Fails at any other point, where bands do not rise and where none is from 2 to 50.
  static BandPlan ofOctaves(std::span<const double> x);

  /// Of narrow bands: points from `start` to before `end`, at most the size of `x`, are added up,
  /// what lies on an edge in proportion. Only bands that they cover, and that are at least three of
  /// them wide. Fails where there is no such band.
  static BandPlan ofBins(std::span<const double> x, std::size_t start, std::size_t end);

  [[nodiscard]] std::size_t size() const { return parts_.size(); }
  [[nodiscard]] std::int16_t band(std::size_t place) const { return parts_[place].band; }
  /// Whether bands follow each other without a gap.
  [[nodiscard]] bool isWhole() const;

  /// The value of the band at a place.
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
    std::size_t first;  // point
    std::size_t last;
    double ofFirst;  // how much of it belongs to the band
    double ofLast;
  };

  std::vector<Part> parts_;
};

}  // namespace aq
