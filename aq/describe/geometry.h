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
        .property("X", &P::X, &P::X, "First coordinate", kLength)
        .property("Y", &P::Y, &P::Y, "Second coordinate", kLength)
        .property("Z", &P::Z, &P::Z, "Third coordinate, the height", kLength);
  }
};

template <>
struct Description<AQ_PositionTimeHistory> {
  static constexpr char name[] = "AQ_PositionTimeHistory";
  static constexpr int number = 32;
  static constexpr char text[] = "The ordered series of a source's positions, shared, not copied";
  template <class To>
  static void members(To& to) {
    using H = AQ_PositionTimeHistory;
    to.method("Copy", &H::Copy, "A deep copy, numbered from 1")
        .indexed("Position", &H::Position, &H::Position,
                 in("nRecord", "Reading: the place; storing: the record number", kPlace),
                 "The sample at a place from 1 on; storing goes by record number")
        .method("PositionAt", &H::PositionAt,
                "The stored sample nearest in time of day, no object when no two samples enclose "
                "it",
                in("aqTime", "The time of day"))
        .method("GoodTime", &H::GoodTime,
                "Whether a time of day lies between those of the first and the last sample",
                in("aqTime", "The time of day"))
        .property("Count", &H::Count, "The number of samples; above 32767 it raises", kCount)
        .method("contains", &H::contains, "Whether there is a sample at a place",
                in("place", "The place", kPlace));
  }
};

template <>
struct Description<AQ_Microphone> {
  static constexpr char name[] = "AQ_Microphone";
  static constexpr int number = 33;
  static constexpr char text[] = "Where a microphone stands";
  template <class To>
  static void members(To& to) {
    using M = AQ_Microphone;
    to.field("X", &M::X, "First coordinate", kLength)
        .field("Y", &M::Y, "Second coordinate", kLength)
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
      "was then, and how the sound came to the microphone. Units are those of the program that "
      "fills it; emissionGeometry gives metres, degrees and seconds";
  template <class To>
  static void members(To& to) {
    using G = AQ_Geometry;
    to.field("SRe", &G::SRe, "Slant range at emission", kOfTheProgram)
        .field("THETAe", &G::THETAe, "First emission angle", kOfTheProgram)
        .field("BETAe", &G::BETAe, "Second emission angle", kOfTheProgram)
        .field("Tprope", &G::Tprope, "Propagation time from emission to measurement", kOfTheProgram)
        .field("debugTime", &G::debugTime,
               "Free, for diagnostics; written and not read back, and not copied", kOfTheProgram)
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
      "The emission geometry of the records of a measurement, by record number. Points are shared, "
      "not copied";
  template <class To>
  static void members(To& to) {
    using H = AQ_GeometryTimeHistory;
    to.method("Copy", &H::Copy, "A deep copy of points 1 to Count, and of nothing else")
        .property("ReferenceType", &H::ReferenceType, &H::ReferenceType,
                  "Which event the reference time marks")
        .method("setRelTimes", &H::setRelTimes,
                "Shares the reference time; with any points it raises, setTimeStamps relates them",
                in("ReferenceTime", "The reference time"), in("RefType", "Which event that marks"))
        .property("startTime", &H::startTime, &H::startTime, "The time of the first record")
        .property("TimeStampType", &H::TimeStampType, &H::TimeStampType,
                  "Which instant of a record its time stamp names")
        .method("setTimeStamps", &H::setTimeStamps,
                "Stamps Tm of every point, half a second each, relative to the reference",
                in("startTime", "The time of the first record"),
                in("StartTimeType", "Which instant of a record its stamp names"),
                in("RefTime", "The reference time"), in("RefType", "Which event that marks"))
        .property("ReferenceTime", &H::ReferenceTime, &H::ReferenceTime, "The reference time")
        .indexed("Point", &H::Point, &H::Point, in("nRecord", "The record", kRecordOf32Bits),
                 "The point under a record number; reading one that is missing raises")
        .property("Count", &H::Count, "The number of points", kCount)
        .method("contains", &H::contains, "Whether a record has a point",
                in("number", "The record", kRecordOf32Bits));
  }
};

template <>
struct Description<AQ_EmtRcvRecord> {
  static constexpr char name[] = "AQ_EmtRcvRecord";
  static constexpr int number = 36;
  static constexpr char text[] =
      "One pair of emission and reception: where the aircraft was when it emitted what the "
      "microphone received later. Units are those of the program that fills it";
  template <class To>
  static void members(To& to) {
    using R = AQ_EmtRcvRecord;
    to.field("SR", &R::SR, "Slant range", kOfTheProgram)
        .field("Tprop", &R::Tprop, "Propagation time", kOfTheProgram)
        .property("T", &R::T, &R::T, "The time of emission")
        .property("Tr", &R::Tr, &R::Tr, "The time of reception")
        .property("ACPosition", &R::ACPosition, &R::ACPosition, "Where the aircraft was");
  }
};

template <>
struct Description<AQ_EmtRcvTable> {
  static constexpr char name[] = "AQ_EmtRcvTable";
  static constexpr int number = 37;
  static constexpr char text[] =
      "A series of pairs of emission and reception, and its columns. Records are shared";
  template <class To>
  static void members(To& to) {
    using T = AQ_EmtRcvTable;
    to.indexed("Record", &T::Record, &T::Record, in("nRecord", "The place", kPlace),
               "The record at a place from 1 on; storing appends, whatever the place")
        .property("T", &T::T, "Seconds of the day of emission, a new collection")
        .property("Tr", &T::Tr, "Seconds of the day of reception, a new collection")
        .property("X", &T::X, "The aircraft's first coordinate, a new collection")
        .property("Y", &T::Y, "The aircraft's second coordinate, a new collection")
        .property("Z", &T::Z, "The aircraft's height, a new collection")
        .property("Count", &T::Count, "The number of records", kCount);
  }
};

template <>
struct Description<AQ_SPointTrk> {
  static constexpr char name[] = "AQ_SPointTrk";
  static constexpr int number = 38;
  static constexpr char text[] =
      "Summary values of one point of a flight track. What they mean beyond their names is known "
      "to the program that stores them";
  template <class To>
  static void members(To& to) {
    using P = AQ_SPointTrk;
    to.property("TOH", &P::TOH, &P::TOH, "Time overhead")
        .property("TMAX", &P::TMAX, &P::TMAX, "Time of the maximum")
        .property("T1", &P::T1, &P::T1, "First time")
        .property("T2", &P::T2, &P::T2, "Second time")
        .property("YOFF", &P::YOFF, &P::YOFF, "Lateral offset", kOfTheProgram)
        .property("PHI", &P::PHI, &P::PHI, "Angle", kOfTheProgram)
        .property("CYANG", &P::CYANG, &P::CYANG, "Angle", kOfTheProgram)
        .property("ALT", &P::ALT, &P::ALT, "Altitude", kOfTheProgram)
        .property("GSPDKTS", &P::GSPDKTS, &P::GSPDKTS, "Ground speed", Quantity{"kn"})
        .property("FIRST", &P::FIRST, &P::FIRST, "First record", kRecord)
        .property("LAST", &P::LAST, &P::LAST, "Last record", kRecord)
        .property("MAX", &P::MAX, &P::MAX, "Record of the maximum", kRecord);
  }
};

inline constexpr List<AQ_Position, AQ_PositionTimeHistory, AQ_Microphone, AQ_Geometry,
                      AQ_GeometryTimeHistory, AQ_EmtRcvRecord, AQ_EmtRcvTable, AQ_SPointTrk>
    kGeometryClasses;

}  // namespace aq::describe
