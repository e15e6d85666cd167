#include "aq/noise/tone_procedure.h"

#include <algorithm>
#include <limits>

namespace aq {
namespace {

// Tone corrections are doubled from 500 to 5000 Hz, bands 27 to 37.
constexpr std::size_t kFirstDouble = 27 - kFirstToneBand;
constexpr std::size_t kAfterDouble = 38 - kFirstToneBand;

template <class Number>
Number numberOf(double value) {
  return Number{} + value;
}

/// The correction in dB for a difference from the background, in the bands below 500 Hz and above
/// 5000 Hz: the minimum of three lines, but at least 0. Returns 0 for NaN.
template <class Number>
Number correctionOf(const Number& difference) {
  const Number third = difference / 3.0;
  const auto least = smallerOf<Number>(third / 2.0, third - 0.5);
  return largerOf(smallerOf(numberOf<Number>(10.0 / 3), least), Number{});
}

}  // namespace

double bandCorrection(std::size_t place, double difference) {
  const bool isDouble = place >= kFirstDouble && place < kAfterDouble;
  return (isDouble ? 2 : 1) * correctionOf(difference);
}

template <class Number>
void ToneProcedure<Number>::run(std::size_t count) {
  largest = Number{};
  if (count == 0) return;
  findSlopes(count);
  adjustLevels(count);
  findBackground(count);
  findLargest(count);
}

template <class Number>
void ToneProcedure<Number>::findSlopes(std::size_t count) {
  const auto none = numberOf<Number>(std::numeric_limits<double>::quiet_NaN());
  slope[0] = none;
  for (std::size_t i = 1; i < count; ++i) slope[i] = level[i] - level[i - 1];
  slope[count] = none;
}

template <class Number>
void ToneProcedure<Number>::adjustLevels(std::size_t count) {
  adjusted[0] = level[0];
  for (std::size_t i = 1; i < count; ++i) {
    const Number below = level[i - 1];
    const Number replacement =
        i + 1 < count ? Number((below + level[i + 1]) / 2.0) : Number(below + slope[i - 1]);
    // A level is replaced if the slope up to it is positive, and either this slope exceeds the one
    // before it by more than 5 dB, or the next slope is 0 or negative and more than 5 dB below it.
    const auto rises = slope[i] > 0.0;
    const auto bendsUp = slopeChange(i) > kMarkedSlopeChange;
    const auto bendsDown = slopeChange(i + 1) < -kMarkedSlopeChange;
    const auto falls = slope[i + 1] <= 0.0;
    const auto replaced = rises & (bendsUp | (bendsDown & falls));
    isReplaced[i] = replaced ? numberOf<Number>(1) : Number{};
    adjusted[i] = replaced ? replacement : level[i];
    adjustedSlope[i] = adjusted[i] - adjusted[i - 1];
  }
  adjustedSlope[0] = adjustedSlope[1];
  adjustedSlope[count] = adjustedSlope[count - 1];
}

template <class Number>
void ToneProcedure<Number>::findBackground(std::size_t count) {
  background[0] = level[0];
  for (std::size_t i = 0; i + 1 < count; ++i) {
    meanSlope[i] = (adjustedSlope[i] + adjustedSlope[i + 1] + adjustedSlope[i + 2]) / 3.0;
    background[i + 1] = background[i] + meanSlope[i];
  }
}

/// A correction never decreases as the difference increases, so in each of the two ranges of bands
/// the largest difference has the largest correction.
template <class Number>
void ToneProcedure<Number>::findLargest(std::size_t count) {
  const auto largestOf = [&](std::size_t begin, std::size_t end) {
    Number found{};
    for (std::size_t i = begin; i < std::min(end, count); ++i) {
      difference[i] = level[i] - background[i];
      found = largerOf(difference[i], found);
    }
    return found;
  };
  const Number once = largerOf(largestOf(0, kFirstDouble), largestOf(kAfterDouble, kToneBands));
  const Number twice = largestOf(kFirstDouble, kAfterDouble);
  largest = largerOf<Number>(correctionOf(once), 2.0 * correctionOf(twice));
}

template <class Number>
Number ToneProcedure<Number>::candidates(std::size_t count) const {
  const Number least = 2.99 * largest;  // a correction is at most a third of the difference
  Number sum{};
  double power = 1;
  for (std::size_t i = 0; i < count; ++i, power *= 2) {
    sum += difference[i] >= least ? numberOf<Number>(power) : Number{};
  }
  return sum;
}

template class ToneProcedure<double>;
template class ToneProcedure<Lanes>;

}  // namespace aq
