#include "aq/noise/noise_event.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <string>

#include "aq/core/error.h"
#include "aq/noise/power_of_ten.h"

namespace aq {
namespace {

constexpr double kDown = 10;          // dB below the maximum, where the limits are
constexpr double kSecondWithin = 2;   // dB below the maximum at most, for a second peak
constexpr double kSecondAbove = 0.1;  // dB above both neighbours at least, for a second peak
constexpr double kReferenceSeconds = 10;
constexpr double kRounding = 1e-9;  // dB, tolerance for the rounding of decimals to doubles
constexpr double kBelowAll = -std::numeric_limits<double>::infinity();

void check(std::span<const double> pnlt, std::span<const double> seconds,
           std::span<const double> toneCorrections) {
  const auto found = [](std::span<const double> values) { return std::to_string(values.size()); };
  if (pnlt.empty()) throw Error(ErrorCode::InvalidArgument, "there are no records");
  if (seconds.size() != 1 && seconds.size() != pnlt.size()) {
    throw Error(ErrorCode::InvalidArgument,
                "expected one duration or " + found(pnlt) + ", found " + found(seconds));
  }
  if (!toneCorrections.empty() && toneCorrections.size() != pnlt.size()) {
    throw Error(ErrorCode::InvalidArgument,
                "expected " + found(pnlt) + " tone corrections, found " + found(toneCorrections));
  }
  for (const double each : seconds) {
    if (each > 0 && std::isfinite(each)) continue;
    throw Error(ErrorCode::InvalidValue,
                "expected a finite duration above 0 s, found " + std::to_string(each));
  }
}

/// The series, with records without PNLT set below any limit.
std::vector<double> lowered(std::span<const double> pnlt) {
  std::vector<double> values(pnlt.begin(), pnlt.end());
  for (double& value : values) {
    if (std::isinf(value)) throw Error(ErrorCode::InvalidValue, "a PNLT is infinite");
    if (std::isnan(value)) value = kBelowAll;
  }
  return values;
}

/// Of the records on either side of a limit, the nearer one; the outer one if equally near.
std::size_t nearer(const std::vector<double>& pnlt, std::size_t outer, std::size_t inner,
                   double limit) {
  const double out = std::abs(pnlt[outer] - limit);
  return out <= std::abs(pnlt[inner] - limit) + kRounding ? outer : inner;
}

std::optional<std::size_t> firstLimit(const std::vector<double>& pnlt, double limit) {
  std::size_t above = 0;
  while (pnlt[above] <= limit + kRounding) ++above;
  if (above == 0) return std::nullopt;
  return nearer(pnlt, above - 1, above, limit);
}

std::optional<std::size_t> lastLimit(const std::vector<double>& pnlt, double limit) {
  std::size_t inner = pnlt.size() - 1;
  while (pnlt[inner] < limit - kRounding) --inner;
  if (inner + 1 < pnlt.size()) return nearer(pnlt, inner + 1, inner, limit);
  if (pnlt[inner] > limit + kRounding) return std::nullopt;
  return inner;
}

bool isSecondPeak(const std::vector<double>& pnlt, std::size_t at, double largest) {
  return pnlt[at] >= largest - kSecondWithin - kRounding &&
         pnlt[at] - pnlt[at - 1] >= kSecondAbove - kRounding &&
         pnlt[at] - pnlt[at + 1] >= kSecondAbove - kRounding;
}

/// The band-sharing adjustment in dB, for the record `maximum` (14 CFR 36, A36.4.4.2).
double bandSharingOf(std::span<const double> corrections, std::size_t maximum) {
  if (corrections.empty() || std::isnan(corrections[maximum])) return 0;
  const std::size_t begin = maximum < 2 ? 0 : maximum - 2;
  const std::size_t end = std::min(corrections.size(), maximum + 3);
  double sum = 0;
  int count = 0;
  for (std::size_t i = begin; i < end; ++i) {
    if (std::isnan(corrections[i])) continue;
    sum += corrections[i];
    ++count;
  }
  return std::max(0.0, sum / count - corrections[maximum]);
}

/// The level in dB of the energy from `begin` to `end` averaged over ten seconds, computed relative
/// to `largest`.
double effectiveLevel(std::span<const double> pnlt, std::span<const double> seconds,
                      std::size_t begin, std::size_t end, double largest) {
  double energy = 0;
  for (std::size_t i = begin; i <= end; ++i) {
    energy += powerOfTen(0.1 * (pnlt[i] - largest)) * seconds[seconds.size() == 1 ? 0 : i];
  }
  return largest + 10 * std::log10(energy / kReferenceSeconds);
}

}  // namespace

NoiseEvent noiseEvent(std::span<const double> pnlt, std::span<const double> seconds,
                      std::span<const double> toneCorrections) {
  check(pnlt, seconds, toneCorrections);
  const std::vector<double> values = lowered(pnlt);
  const auto maximum = std::max_element(values.begin(), values.end());
  if (*maximum == kBelowAll) throw Error(ErrorCode::InvalidArgument, "no record has a PNLT");

  NoiseEvent event;
  event.maximum = static_cast<std::size_t>(maximum - values.begin());
  event.pnltm = *maximum;
  event.first = firstLimit(values, event.pnltm - kDown);
  event.last = lastLimit(values, event.pnltm - kDown);
  const std::size_t begin = event.first.value_or(0);
  const std::size_t end = event.last.value_or(values.size() - 1);
  for (std::size_t i = std::max<std::size_t>(begin, 1); i <= end && i + 1 < values.size(); ++i) {
    if (i != event.maximum && isSecondPeak(values, i, event.pnltm)) event.secondPeaks.push_back(i);
  }
  event.epnl = effectiveLevel(values, seconds, begin, end, event.pnltm);
  event.duration = event.epnl - event.pnltm;
  event.bandSharing = bandSharingOf(toneCorrections, event.maximum);
  event.epnlWithBandSharing = event.epnl + event.bandSharing;
  return event;
}

}  // namespace aq
