#pragma once

#include "aq/describe/enumerations.h"
#include "aq/geometry/emt_rcv_record.h"
#include "aq/geometry/emt_rcv_table.h"
#include "aq/geometry/geometry.h"
#include "aq/geometry/geometry_time_history.h"
#include "aq/geometry/microphone.h"
#include "aq/geometry/position.h"
#include "aq/geometry/position_time_history.h"
#include "aq/geometry/s_point_trk.h"

namespace aq::describe {

template <>
struct Description<AQ_Position> {
  static constexpr char name[] = "AQ_Position";
  static constexpr int number = 31;
  static constexpr char text[] =
      "One sample of a source's position: a time of day and three Cartesian coordinates";
  template <class To>
  static void members(To& to) {
    using P = AQ_Position;
    to.method("Copy", &P::Copy, "A deep copy")
        .property("Time", &P::Time, &P::Time, "The time of day")
        .property("X", &P::X, &P::X, "First coordinate, along the ground", kLength)
        .property("Y", &P::Y, &P::Y, "Second coordinate, along the ground", kLength)
        .property("Z", &P::Z, &P::Z, "Third coordinate, the height", kLength);
  }
};

template <>
struct Description<AQ_PositionTimeHistory> {
  static constexpr char name[] = "AQ_PositionTimeHistory";
  static constexpr int number = 32;
  static constexpr char text[] =
      "The ordered series of a source's positions. Positions are shared, not copied";
  template <class To>
  static void members(To& to) {
    using H = AQ_PositionTimeHistory;
    to.method("Copy", &H::Copy,
              "A deep copy, numbered from 1; raises if there are more than 32767 samples")
        .indexed("Position", &H::Position, &H::Position,
                 in("nRecord", "The index when reading, the record number when storing", kPlace),
                 "The sample at a 1-based index; reading raises if it is missing. Storing takes a "
                 "record number, removes a sample already stored under it, and appends the new one")
        .method("PositionAt", &H::PositionAt,
                "The stored sample nearest to a time of day; no object unless two neighbouring "
                "samples enclose that time. Raises if there are more than 32767 samples",
                in("aqTime", "The time of day"))
        .method("GoodTime", &H::GoodTime,
                "Whether a time of day lies between those of the first and the last sample, "
                "inclusive; raises if the history is empty or has more than 32767 samples",
                in("aqTime", "The time of day"))
        .property("Count", &H::Count, "The number of samples; raises if there are more than 32767",
                  kCount)
        .method("contains", &H::contains, "Whether there is a sample at an index",
                in("place", "The index", kPlace));
  }
};

template <>
struct Description<AQ_Microphone> {
  static constexpr char name[] = "AQ_Microphone";
  static constexpr int number = 33;
  static constexpr char text[] = "The position of a microphone";
  template <class To>
  static void members(To& to) {
    using M = AQ_Microphone;
    to.field("X", &M::X, "First coordinate, along the ground", kLength)
        .field("Y", &M::Y, "Second coordinate, along the ground", kLength)
        .field("Z", &M::Z, "Third coordinate, the height of the ground", kLength)
        .field("Height", &M::Height, "Height above the ground at X, Y", kLength);
  }
};

template <>
struct Description<AQ_Geometry> {
  static constexpr char name[] = "AQ_Geometry";
  static constexpr int number = 34;
  static constexpr char text[] =
      "The emission geometry of one measured record: when its sound was emitted, where the source "
      "was then, and how the sound reached the microphone. emissionGeometry gives metres, "
      "degrees and seconds; values from other programs are not converted";
  template <class To>
  static void members(To& to) {
    using G = AQ_Geometry;
    to.field("SRe", &G::SRe, "Slant range at emission", kLength)
        .field("THETAe", &G::THETAe,
               "Angle from the direction of flight to the line to the microphone; 0 is ahead",
               Quantity{"degree", 0, 180})
        .field("BETAe", &G::BETAe,
               "Angle about the direction of flight, from straight down to the line to the "
               "microphone; positive to the left",
               Quantity{"degree", -180, 180})
        .field("Tprope", &G::Tprope, "Propagation time from emission to measurement", kSeconds)
        .field("debugTime", &G::debugTime,
               "Free for diagnostics; written to files, but neither read back nor copied", kSeconds)
        .method("Copy", &G::Copy, "A deep copy, without debugTime")
        .property("Pe", &G::Pe, &G::Pe, "The source's position at emission")
        .property("Te", &G::Te, &G::Te, "The time of emission")
        .property("Tm", &G::Tm, &G::Tm, "The record's time at the microphone");
  }
};

template <>
struct Description<AQ_GeometryTimeHistory> {
  static constexpr char name[] = "AQ_GeometryTimeHistory";
  static constexpr int number = 35;
  static constexpr char text[] =
      "The emission geometry of a measurement: one point per record, by record number. Points are "
      "shared, not copied";
  template <class To>
  static void members(To& to) {
    using H = AQ_GeometryTimeHistory;
    to.method("Copy", &H::Copy,
              "A deep copy of points 1 to Count, without the history's own times and types; raises "
              "if a point is missing")
        .property("ReferenceType", &H::ReferenceType, &H::ReferenceType,
                  "Which event the reference time marks")
        .method("setRelTimes", &H::setRelTimes,
                "Stores the reference time, shared with the caller, and its type; then raises if "
                "there are points, as only setTimeStamps sets their relative times",
                in("ReferenceTime", "The reference time"),
                in("RefType", "Which event the reference time marks"))
        .property("startTime", &H::startTime, &H::startTime, "The time of the first record")
        .property("TimeStampType", &H::TimeStampType, &H::TimeStampType,
                  "Which instant the time stamp of a record marks")
        .method("setTimeStamps", &H::setTimeStamps,
                "Sets Tm of points 1 to Count, half a second apart, and their times relative to "
                "the reference. Raises at a missing point, after stamping those before it",
                in("startTime", "The time of the first record"),
                in("StartTimeType", "Which instant the time stamp of a record marks"),
                in("RefTime", "The reference time"),
                in("RefType", "Which event the reference time marks"))
        .property("ReferenceTime", &H::ReferenceTime, &H::ReferenceTime, "The reference time")
        .indexed("Point", &H::Point, &H::Point, in("nRecord", "The record", kRecordOf32Bits),
                 "The point of a record; reading raises if it is missing")
        .property("Count", &H::Count, "The number of points; raises if there are more than 32767",
                  kCount)
        .method("contains", &H::contains, "Whether a record has a point",
                in("number", "The record", kRecordOf32Bits));
  }
};

template <>
struct Description<AQ_EmtRcvRecord> {
  static constexpr char name[] = "AQ_EmtRcvRecord";
  static constexpr int number = 36;
  static constexpr char text[] =
      "One emission and reception pair: where the aircraft was when it emitted the sound that "
      "the microphone received later";
  template <class To>
  static void members(To& to) {
    using R = AQ_EmtRcvRecord;
    to.field("SR", &R::SR, "Slant range", kLength)
        .field("Tprop", &R::Tprop, "Propagation time", kSeconds)
        .property("T", &R::T, &R::T, "The time of emission")
        .property("Tr", &R::Tr, &R::Tr, "The time of reception")
        .property("ACPosition", &R::ACPosition, &R::ACPosition,
                  "The aircraft's position at emission");
  }
};

template <>
struct Description<AQ_EmtRcvTable> {
  static constexpr char name[] = "AQ_EmtRcvTable";
  static constexpr int number = 37;
  static constexpr char text[] =
      "A series of emission and reception pairs, also available as columns. Records are shared, "
      "not copied";
  template <class To>
  static void members(To& to) {
    using T = AQ_EmtRcvTable;
    to.indexed("Record", &T::Record, &T::Record, in("nRecord", "The index", kPlace),
               "The record at a 1-based index; reading raises if it is missing. Storing ignores "
               "the index and appends")
        .property(
            "T", &T::T,
            "The emission times in seconds after midnight, as a new collection; raises if there "
            "are more than 32767 records")
        .property(
            "Tr", &T::Tr,
            "The reception times in seconds after midnight, as a new collection; raises if there "
            "are more than 32767 records")
        .property("X", &T::X,
                  "The aircraft's X coordinates, in the length unit of its positions, as a new "
                  "collection; raises if there are more than 32767 records")
        .property("Y", &T::Y,
                  "The aircraft's Y coordinates, in the length unit of its positions, as a new "
                  "collection; raises if there are more than 32767 records")
        .property("Z", &T::Z,
                  "The aircraft's heights, in the length unit of its positions, as a new "
                  "collection; raises if there are more than 32767 records")
        .property("Count", &T::Count, "The number of records; raises if there are more than 32767",
                  kCount);
  }
};

template <>
struct Description<AQ_SPointTrk> {
  static constexpr char name[] = "AQ_SPointTrk";
  static constexpr int number = 38;
  static constexpr char text[] =
      "Summary values for one point of a flight track; the application defines their exact meaning";
  template <class To>
  static void members(To& to) {
    using P = AQ_SPointTrk;
    to.property("TOH", &P::TOH, &P::TOH,
                "Time at which the source is overhead; no object until set")
        .property("TMAX", &P::TMAX, &P::TMAX, "Time of the maximum level; no object until set")
        .property("T1", &P::T1, &P::T1,
                  "The first of two times for the application's own use; no object until set")
        .property("T2", &P::T2, &P::T2,
                  "The second of two times for the application's own use; no object until set")
        .property("YOFF", &P::YOFF, &P::YOFF, "Lateral offset from the track", kLength)
        .property("PHI", &P::PHI, &P::PHI,
                  "Elevation angle, or another angle that the application defines", kAngle)
        .property("CYANG", &P::CYANG, &P::CYANG, "Another angle that the application defines",
                  kAngle)
        .property("ALT", &P::ALT, &P::ALT, "Altitude of the source", kLength)
        .property("GSPDKTS", &P::GSPDKTS, &P::GSPDKTS, "Ground speed", Quantity{"kn"})
        .property("FIRST", &P::FIRST, &P::FIRST, "First record of the event", kRecord)
        .property("LAST", &P::LAST, &P::LAST, "Last record of the event", kRecord)
        .property("MAX", &P::MAX, &P::MAX, "Record of the maximum", kRecord);
  }
};

inline constexpr List<AQ_Position, AQ_PositionTimeHistory, AQ_Microphone, AQ_Geometry,
                      AQ_GeometryTimeHistory, AQ_EmtRcvRecord, AQ_EmtRcvTable, AQ_SPointTrk>
    kGeometryClasses;

}  // namespace aq::describe
