#include "aq/spectral/cut_history.h"

#include <cstdint>
#include <limits>
#include <optional>
#include <string>

#include "aq/core/error.h"
#include "aq/detail/half_second.h"
#include "aq/detail/pointers.h"

namespace aq {
namespace {

double stampOf(const std::shared_ptr<AQ_Spectrum>& spectrum) {
  return orThrow(spectrum).lazyTime().secondsOfDay();
}

}  // namespace

RecordRange recordsBetween(const AQ_SpectralTimeHistory& history, double from, double to) {
  std::optional<RecordRange> found;
  std::optional<double> begin;
  for (const auto& [number, spectrum] : history) {
    const double stamp = stampOf(spectrum);
    if (!begin) begin = stamp;
    const double elapsed = secondsFrom(*begin, stamp);
    if (elapsed < secondsFrom(*begin, from) || elapsed > secondsFrom(*begin, to)) continue;
    if (!found) found = {number, number};
    found->last = number;
  }
  if (!found) throw Error(ErrorCode::InvalidArgument, "no record has a stamp between these times");
  return *found;
}

std::shared_ptr<AQ_SpectralTimeHistory> cutHistory(AQ_SpectralTimeHistory& history,
                                                   const RecordRange& range, bool fromOne) {
  auto part = std::make_shared<AQ_SpectralTimeHistory>();
  std::optional<double> begin;
  std::optional<std::int32_t> first;
  for (const auto& [number, spectrum] : history) {
    if (!begin) begin = stampOf(spectrum);
    if (number < range.first || number > range.last) continue;
    if (!first) {
      first = number;
      copyDateAndTimeOfDay(*history.startTime(), *part->startTime());
      moveTimeOfDay(*part->startTime(), secondsFrom(*begin, stampOf(spectrum)));
    }
    const std::int32_t place = fromOne ? number - *first + 1 : number;
    if (place > std::numeric_limits<std::int16_t>::max()) {
      throw Error(ErrorCode::Overflow, "there are too many records for 16-bit numbers from 1");
    }
    part->spectrum(static_cast<std::int16_t>(place), spectrum);
  }
  if (!first) {
    throw Error(ErrorCode::InvalidArgument, "no record from " + std::to_string(range.first) +
                                                " to " + std::to_string(range.last));
  }
  part->AverageMethod(history.AverageMethod());
  part->TimeStampType(history.TimeStampType());
  copyDateAndTimeOfDay(*history.ReferenceTime(), *part->ReferenceTime());
  part->ReferenceType(history.ReferenceType());
  part->Metrics(history.Metrics()->Copy());
  return part;
}

}  // namespace aq
