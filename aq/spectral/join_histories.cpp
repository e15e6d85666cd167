#include "aq/spectral/join_histories.h"

#include <cmath>
#include <limits>
#include <optional>
#include <string>
#include <vector>

#include "aq/core/error.h"
#include "aq/detail/half_second.h"
#include "aq/detail/pointers.h"

namespace aq {
namespace {

[[noreturn]] void refusePieces(const std::string& why) {
  throw Error(ErrorCode::InvalidArgument, why);
}

/// The first and last record of a piece.
struct RunPiece {
  std::int32_t first = 0;
  std::int32_t last = 0;
  AQ_Spectrum* firstSpectrum = nullptr;
  AQ_Spectrum* lastSpectrum = nullptr;

  explicit RunPiece(const AQ_SpectralTimeHistory& history) {
    for (const auto& [number, spectrum] : history) {
      AQ_Spectrum& here = orThrow(spectrum);
      if (firstSpectrum == nullptr) first = number, firstSpectrum = &here;
      last = number, lastSpectrum = &here;
      if (bandsOfPiece(here) == bandsOfPiece(*firstSpectrum)) continue;
      refusePieces("record " + std::to_string(number) + " has different bands from record " +
                   std::to_string(first));
    }
    if (firstSpectrum == nullptr) refusePieces("a piece has no records");
  }

  [[nodiscard]] static std::pair<std::int16_t, std::int16_t> bandsOfPiece(const AQ_Spectrum& one) {
    return {one.LowBand(), one.HighBand()};
  }
  [[nodiscard]] double begin() const { return firstSpectrum->lazyTime().secondsOfDay(); }
  [[nodiscard]] double end() const { return lastSpectrum->lazyTime().secondsOfDay(); }

  /// The average time from one record number to the next, in seconds; nothing for a single record.
  [[nodiscard]] std::optional<double> step() const {
    if (first == last) return std::nullopt;
    return secondsFrom(begin(), end()) / (last - first);
  }
};

std::string bandsOfText(const RunPiece& piece) {
  const auto [low, high] = RunPiece::bandsOfPiece(*piece.firstSpectrum);
  return std::to_string(low) + " to " + std::to_string(high);
}

void expectSame(const std::string& what, const std::string& before, const std::string& after) {
  if (before != after) {
    refusePieces("the pieces have different " + what + ": " + before + " and " + after);
  }
}

void expectOneMeasurement(AQ_SpectralTimeHistory& before, AQ_SpectralTimeHistory& after) {
  expectSame("averaging methods", before.sAveragingMethod(), after.sAveragingMethod());
  expectSame("types of time stamps", before.sTimeStampType(), after.sTimeStampType());
  expectSame("types of reference times", before.sReferenceTimeType(), after.sReferenceTimeType());
  const AQ_Time& one = *before.ReferenceTime();
  const AQ_Time& other = *after.ReferenceTime();
  if (one.TODseconds() != other.TODseconds()) {
    expectSame("reference times", one.TODstring(), other.TODstring());
    refusePieces("the pieces have different reference times");  // equal as text
  }
  if (one.CurrentDate() != other.CurrentDate()) {
    refusePieces("the pieces have reference times on different days");
  }
}

/// Seconds from one record to the next, which must be the same in both pieces; half a second if
/// both have a single record.
double stepOf(const RunPiece& before, const RunPiece& after) {
  constexpr double kHalfSecond = 0.5;
  constexpr double kRounding = 0.005;  // stamps are written to hundredths of a second
  const double step = before.step().value_or(after.step().value_or(kHalfSecond));
  if (!(step > 0)) refusePieces("the record times of a piece do not ascend");
  if (std::abs(after.step().value_or(step) - step) > kRounding) {
    refusePieces("the pieces have different record lengths");
  }
  return step;
}

std::int32_t missingBetween(const RunPiece& before, const RunPiece& after) {
  expectSame("bands", bandsOfText(before), bandsOfText(after));
  const double step = stepOf(before, after);
  const double gap = secondsFrom(before.end(), after.begin()) / step - 1;
  constexpr double kPartOfARecord = 0.05;
  if (gap < -kPartOfARecord) {
    refusePieces("the second piece begins before the first one ends");
  }
  if (std::abs(gap - std::round(gap)) > kPartOfARecord) {
    refusePieces("the gap between the pieces is not a whole number of records");
  }
  if (gap > std::numeric_limits<std::int16_t>::max()) {
    throw Error(ErrorCode::Overflow,
                "the gap between the pieces is longer than 16-bit record numbers allow");
  }
  return static_cast<std::int32_t>(std::lround(gap));
}

/// A record whose levels are not valid, stamped `seconds` after `last`.
std::shared_ptr<AQ_Spectrum> invalidAfter(AQ_Spectrum& last, double seconds) {
  auto spectrum = std::make_shared<AQ_Spectrum>();
  for (std::int32_t band = last.LowBand(); band <= last.HighBand(); ++band) {
    spectrum->SPL(static_cast<std::int16_t>(band), double{AQ_INVALID_LEVEL});
  }
  AQ_Time time = last.timeValue();
  moveTimeOfDay(time, seconds);
  time.RelSeconds(time.RelSeconds() + seconds);
  spectrum->Time(std::make_shared<AQ_Time>(time));
  return spectrum;
}

}  // namespace

std::int32_t recordsMissing(AQ_SpectralTimeHistory& before, AQ_SpectralTimeHistory& after) {
  expectOneMeasurement(before, after);
  return missingBetween(RunPiece(before), RunPiece(after));
}

std::shared_ptr<AQ_SpectralTimeHistory> joinHistories(AQ_SpectralTimeHistory& before,
                                                      AQ_SpectralTimeHistory& after, bool fill) {
  const std::int32_t gap = recordsMissing(before, after);
  if (gap > 0 && !fill) {
    refusePieces("records are missing between the pieces: " + std::to_string(gap));
  }
  const RunPiece one(before);
  const RunPiece other(after);
  const std::int32_t moved = one.last + gap + 1 - other.first;
  if (other.last + moved > std::numeric_limits<std::int16_t>::max()) {
    throw Error(ErrorCode::Overflow, "the pieces have more records than 16-bit numbers allow");
  }
  auto whole = std::make_shared<AQ_SpectralTimeHistory>();
  const auto store = [&](std::int32_t number, std::shared_ptr<AQ_Spectrum> spectrum) {
    whole->spectrum(static_cast<std::int16_t>(number), std::move(spectrum));
  };
  for (const auto& [number, spectrum] : before) store(number, spectrum);
  const double step = stepOf(one, other);
  for (std::int32_t i = 1; i <= gap; ++i) {
    store(one.last + i, invalidAfter(*one.lastSpectrum, i * step));
  }
  for (const auto& [number, spectrum] : after) store(number + moved, spectrum);
  whole->AverageMethod(before.AverageMethod());
  whole->TimeStampType(before.TimeStampType());
  copyDateAndTimeOfDay(*before.startTime(), *whole->startTime());
  copyDateAndTimeOfDay(*before.ReferenceTime(), *whole->ReferenceTime());
  whole->ReferenceType(before.ReferenceType());
  return whole;
}

}  // namespace aq
