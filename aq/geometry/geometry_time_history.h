#pragma once

#include <cstdint>
#include <memory>
#include <utility>

#include "aq/core/enumerations.h"
#include "aq/core/export.h"
#include "aq/core/time.h"
#include "aq/detail/numbered_series.h"
#include "aq/detail/pointers.h"
#include "aq/geometry/geometry.h"

namespace aq {

/// The emission geometry of a measurement: one point per record, by record number. Points are
/// shared with the caller, not copied.
class AQ_API AQ_GeometryTimeHistory {
 public:
  /// A deep copy of points 1 to `Count`, without the history's own times and types. Throws
  /// `InvalidArgument` if a point is missing.
  [[nodiscard]] std::shared_ptr<AQ_GeometryTimeHistory> Copy() const;

  [[nodiscard]] AQ_RefTimeType ReferenceType() const { return referenceType_; }
  void ReferenceType(AQ_RefTimeType type) { referenceType_ = type; }

  /// Stores the reference time, shared with the caller, and its type. Then throws if there are
  /// points, since a point has two times: `MemberNotSupported`, or `InvalidArgument` if point 1 is
  /// missing; hosts rely on this. Only `setTimeStamps` sets relative times.
  void setRelTimes(const std::shared_ptr<AQ_Time>& ReferenceTime, AQ_RefTimeType RefType);

  /// Created on first read; setting shares the caller's object.
  std::shared_ptr<AQ_Time> startTime() { return orCreate(startTime_); }
  void startTime(std::shared_ptr<AQ_Time> time) { startTime_ = std::move(time); }

  [[nodiscard]] AQ_TimeStampType TimeStampType() const { return timeStampType_; }
  void TimeStampType(AQ_TimeStampType type) { timeStampType_ = type; }

  /// Stamps `Tm` of points 1 to `Count` as `AQ_SpectralTimeHistory::setTimeStamps` stamps records,
  /// then sets the relative seconds of each `Tm` from `RefTime`. Copies the two times. Throws
  /// `InvalidArgument` at a missing point; those before it are stamped.
  void setTimeStamps(const AQ_Time& startTime, AQ_TimeStampType StartTimeType,
                     const AQ_Time& RefTime, AQ_RefTimeType RefType);

  /// Created on first read; setting shares the caller's object.
  std::shared_ptr<AQ_Time> ReferenceTime() { return orCreate(referenceTime_); }
  void ReferenceTime(std::shared_ptr<AQ_Time> time) { referenceTime_ = std::move(time); }

  /// The point with this record number, which need not be its index. Reading throws
  /// `InvalidArgument` if there is none; storing replaces an existing one.
  [[nodiscard]] std::shared_ptr<AQ_Geometry> Point(std::int32_t nRecord) const {
    return points_.at(nRecord);
  }
  void Point(std::int32_t nRecord, std::shared_ptr<AQ_Geometry> aqGeometry) {
    points_.store(nRecord, std::move(aqGeometry));
  }

  /// The number of points. Throws `Overflow` above 32767.
  [[nodiscard]] std::int16_t Count() const { return points_.count(); }

  /// A loop yields the stored points as pairs of record number and point, in ascending order of
  /// record number. Storing a point invalidates iterators. `contains` creates nothing.
  [[nodiscard]] auto begin() const { return points_.begin(); }
  [[nodiscard]] auto end() const { return points_.end(); }
  [[nodiscard]] bool contains(std::int32_t number) const { return points_.contains(number); }

 private:
  NumberedSeries<AQ_Geometry> points_;
  std::shared_ptr<AQ_Time> startTime_;
  AQ_TimeStampType timeStampType_ = AQ_START;
  std::shared_ptr<AQ_Time> referenceTime_;
  AQ_RefTimeType referenceType_ = AQ_START_REF;
};

}  // namespace aq
