#include "aq/noise/record_geometry.h"

#include <algorithm>
#include <cmath>
#include <optional>
#include <string>

#include "aq/core/error.h"
#include "aq/detail/half_second.h"
#include "aq/detail/pointers.h"
#include "aq/geometry/cut_geometry.h"

namespace aq {
namespace {

bool isMeasuredAt(const std::shared_ptr<AQ_Geometry>& point, double stamp) {
  constexpr double kHundredth = 0.006;  // times are written to hundredths of a second
  return std::abs(secondsFrom(stamp, orThrow(point).Tm()->TODseconds())) < kHundredth;
}

}  // namespace

std::shared_ptr<AQ_GeometryTimeHistory> geometryOf(AQ_GeometryTimeHistory& geometry,
                                                   const AQ_SpectralTimeHistory& history,
                                                   const RecordRange& range) {
  std::optional<std::int32_t> first;
  std::int32_t next = 0;
  for (const auto& [record, spectrum] : history) {
    if (record < range.first || record > range.last) continue;
    const double stamp = orThrow(spectrum).lazyTime().secondsOfDay();
    if (!first) {
      const auto found = std::find_if(geometry.begin(), geometry.end(), [&](const auto& entry) {
        return isMeasuredAt(entry.second, stamp);
      });
      if (found != geometry.end()) first = next = (*found).first;
    }
    if (!first || !geometry.contains(next) || !isMeasuredAt(geometry.Point(next), stamp)) {
      throw Error(ErrorCode::InvalidArgument,
                  "the geometry has no point for record " + std::to_string(record));
    }
    ++next;
  }
  if (!first) throw Error(ErrorCode::InvalidArgument, "there is no record in the range");
  return cutGeometry(geometry, *first, next - 1);
}

}  // namespace aq
