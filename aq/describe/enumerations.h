#pragma once

#include "aq/core/enumerations.h"
#include "aq/core/error.h"
#include "aq/describe/description.h"

// Descriptions of the enumerations in `aq/core`.

namespace aq::describe {

template <>
struct Description<AQ_AverageMethod> {
  static constexpr char name[] = "AQ_AverageMethod";
  static constexpr char text[] = "How the levels of one record were averaged";
  template <class To>
  static void members(To& to) {
    to.member("AQ_LINEAR", AQ_LINEAR,
              "Linear average: the mean energy of the record, all instants weighted equally")
        .member("AQ_TRUSLO", AQ_TRUSLO,
                "True slow: the slow response of the analyzer's own detector")
        .member("AQ_4S100", AQ_4S100,
                "Slow response simulated from four consecutive records, with weights that sum to "
                "100 %")
        .member("AQ_4S95", AQ_4S95,
                "Slow response simulated from four consecutive records, with weights that sum to "
                "95 %")
        .member("AQ_CONTEXPO", AQ_CONTEXPO,
                "Slow response simulated by continuous exponential averaging of the records")
        .member("AQ_NA", AQ_NA, "The averaging method is not set, or is none of the others");
  }
};

template <>
struct Description<AQ_TimeStampType> {
  static constexpr char name[] = "AQ_TimeStampType";
  static constexpr char text[] = "Which instant the time stamp of a half-second record marks";
  template <class To>
  static void members(To& to) {
    to.member("AQ_START", AQ_START, "The start of the record")
        .member("AQ_MIDPT", AQ_MIDPT, "The middle of the record")
        .member("AQ_END", AQ_END, "The end of the record")
        .member("AQ_ICAOSLO", AQ_ICAOSLO,
                "0.75 s before the end of the record, where a slow-response level belongs")
        .member("AQ_OLDSLO", AQ_OLDSLO,
                "1 s before the end of the record, the older convention for slow response");
  }
};

template <>
struct Description<AQ_RefTimeType> {
  static constexpr char name[] = "AQ_RefTimeType";
  static constexpr char text[] = "Which event the reference time of a history marks";
  template <class To>
  static void members(To& to) {
    to.member("AQ_START_REF", AQ_START_REF, "The start of the measurement")
        .member("AQ_OVERHEAD", AQ_OVERHEAD, "The instant at which the source is overhead")
        .member("AQ_AMAX", AQ_AMAX, "The largest A-weighted level")
        .member("AQ_PMAX", AQ_PMAX, "The largest perceived noise level")
        .member("AQ_TMAX", AQ_TMAX, "The largest tone-corrected perceived noise level")
        .member("AQ_OAMAX", AQ_OAMAX, "The largest overall level")
        .member("AQ_HACK", AQ_HACK, "A time mark set by hand during the measurement")
        .member("AQ_OTHER", AQ_OTHER, "Any other event");
  }
};

template <>
struct Description<AQ_CONSTANTS> {
  static constexpr char name[] = "AQ_CONSTANTS";
  static constexpr char text[] = "Numbers with a special meaning";
  template <class To>
  static void members(To& to) {
    to.member("AQ_INVALID_LEVEL", AQ_INVALID_LEVEL,
              "As a level: not valid; as a last good band: none; as the lowest band or record: "
              "nothing stored yet");
  }
};

template <>
struct Description<AQ_OPTIME> {
  static constexpr char name[] = "AQ_OPTIME";
  static constexpr char text[] = "Which of its two times an AQ_Time returns as WorkingTime";
  template <class To>
  static void members(To& to) {
    to.member("AQ_TIME_TOD", AQ_TIME_TOD, "The time of day, in seconds after midnight")
        .member("AQ_TIME_REF", AQ_TIME_REF, "The time relative to a reference, in seconds");
  }
};

template <>
struct Description<AQ_DataMessage> {
  static constexpr char name[] = "AQ_DataMessage";
  static constexpr char text[] = "The outcome of reading or writing a file";
  template <class To>
  static void members(To& to) {
    to.member("AQ_DATA_OK", AQ_DATA_OK, "The read or write succeeded")
        .member("AQ_DATA_FILE_ERROR", AQ_DATA_FILE_ERROR,
                "The file could not be read or written; lastFailure says why");
  }
};

template <>
struct Description<AQ_MASK_MODE> {
  static constexpr char name[] = "AQ_MASK_MODE";
  static constexpr char text[] =
      "Whether, and by which test, one band of one record is masked by the ambient";
  template <class To>
  static void members(To& to) {
    to.member("NOT_MASKED", NOT_MASKED, "Not masked: the level is that of the source")
        .member("MASKED_BY_MASK_CRITERION", MASKED_BY_MASK_CRITERION,
                "Masked: the level exceeds the ambient by less than the criterion, if at all")
        .member("MASKED_BY_PRE_DETECT", MASKED_BY_PRE_DETECT,
                "Masked by pre-detection noise: ambient and electrical noise that adds its energy "
                "to the source's")
        .member(
            "MASKED_BY_POST_DETECT", MASKED_BY_POST_DETECT,
            "Masked by post-detection noise: the instruments' noise floor, which adds no energy");
  }
};

template <>
struct Description<AQ_MASK_ADJUST> {
  static constexpr char name[] = "AQ_MASK_ADJUST";
  static constexpr char text[] = "How a masked level was adjusted";
  template <class To>
  static void members(To& to) {
    to.member("NOT_ADJUSTED", NOT_ADJUSTED, "The level is as measured")
        .member("ENERGY_SUBTRACTION", ENERGY_SUBTRACTION,
                "The energy of the ambient was subtracted")
        .member("FREQUENCY_EXTRAPOLATION", FREQUENCY_EXTRAPOLATION,
                "Extrapolated from other bands of the same record")
        .member("TIME_EXTRAPOLATION", TIME_EXTRAPOLATION,
                "Extrapolated from the same band in other records")
        .member("AVG_OF_ADJACENT", AVG_OF_ADJACENT, "The mean of the adjacent bands")
        .member("CORRECTIONS_APPLIED", CORRECTIONS_APPLIED,
                "Other corrections were applied to the level")
        .member("ADJ_TO_REFERENCE", ADJ_TO_REFERENCE, "Adjusted to reference conditions");
  }
};

template <>
struct Description<AQ_METRIC_INTEG_VALUE> {
  static constexpr char name[] = "AQ_METRIC_INTEG_VALUE";
  static constexpr char text[] =
      "The role of a record in the integration of a metric; flags that can be combined";
  template <class To>
  static void members(To& to) {
    to.member("AQ_INTEG_MAX", AQ_INTEG_MAX, "The first record with the largest PNLT")
        .member("AQ_INTEG_FST", AQ_INTEG_FST, "The first record of the sum, at a 10 dB-down limit")
        .member("AQ_INTEG_LST", AQ_INTEG_LST, "The last record of the sum, at a 10 dB-down limit")
        .member("AQ_INTEG_2ND", AQ_INTEG_2ND,
                "A record with a second peak of PNLT, within 2 dB of the largest");
  }
};

template <>
struct Description<AQ_METRIC_TYPE> {
  static constexpr char name[] = "AQ_METRIC_TYPE";
  static constexpr char text[] = "The kinds of metric that a record has";
  template <class To>
  static void members(To& to) {
    to.member("AQ_METRIC_AWT", AQ_METRIC_AWT, "A-weighted level, dB")
        .member("AQ_METRIC_CWT", AQ_METRIC_CWT, "C-weighted level, dB")
        .member("AQ_METRIC_DWT", AQ_METRIC_DWT, "D-weighted level, dB")
        .member("AQ_METRIC_OA", AQ_METRIC_OA, "Overall level, dB")
        .member("AQ_METRIC_PNL", AQ_METRIC_PNL, "Perceived noise level, PNdB")
        .member("AQ_METRIC_PNLT", AQ_METRIC_PNLT, "Tone-corrected perceived noise level, TPNdB")
        .member("AQ_METRIC_TONECOR", AQ_METRIC_TONECOR, "Tone correction, dB")
        .member("AQ_METRIC_TONEBND", AQ_METRIC_TONEBND, "The band that caused the tone correction")
        .member("AQ_METRIC_LGB", AQ_METRIC_LGB, "The last good band")
        .member("AQ_METRIC_INTEG", AQ_METRIC_INTEG,
                "The role of the record in the EPNL integration, flags");
  }
};

template <>
struct Description<ErrorCode> {
  static constexpr char name[] = "ErrorCode";
  static constexpr char text[] = "What kind of fault an Error reports";
  template <class To>
  static void members(To& to) {
    to.member("InvalidArgument", ErrorCode::InvalidArgument,
              "No such entry or label, malformed text, or unsuitable arguments")
        .member("InvalidIndex", ErrorCode::InvalidIndex, "No entry at that index")
        .member("InvalidValue", ErrorCode::InvalidValue,
                "A value that is not allowed, or a time of day that cannot be written as text")
        .member("TypeMismatch", ErrorCode::TypeMismatch,
                "A value that does not convert to the requested type")
        .member("Overflow", ErrorCode::Overflow, "A value or a count outside the range of its type")
        .member("ObjectNotSet", ErrorCode::ObjectNotSet, "A required object is missing")
        .member("MemberNotSupported", ErrorCode::MemberNotSupported,
                "The object has no such member");
  }
};

inline constexpr List<AQ_AverageMethod, AQ_TimeStampType, AQ_RefTimeType, AQ_CONSTANTS, AQ_OPTIME,
                      AQ_DataMessage, AQ_MASK_MODE, AQ_MASK_ADJUST, AQ_METRIC_INTEG_VALUE,
                      AQ_METRIC_TYPE, ErrorCode>
    kEnumerations;

}  // namespace aq::describe
