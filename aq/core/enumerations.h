#pragma once

#include <cstdint>

namespace aq {

// Hosts store and exchange the numbers: values and gaps never change.

/// How the levels of one record were averaged.
enum AQ_AverageMethod : std::int32_t {
  AQ_LINEAR = 0,
  AQ_TRUSLO = 1,
  AQ_4S100 = 2,
  AQ_4S95 = 3,
  AQ_CONTEXPO = 4,
  AQ_NA = 99,  ///< not set
};

/// Which instant of a record its time stamp names.
enum AQ_TimeStampType : std::int32_t {
  AQ_START = 0,
  AQ_MIDPT = 1,
  AQ_END = 2,
  AQ_ICAOSLO = 3,
  AQ_OLDSLO = 4,
};

/// Which event the reference time of a history marks.
enum AQ_RefTimeType : std::int32_t {
  AQ_START_REF = 0,
  AQ_OVERHEAD = 1,
  AQ_AMAX = 2,
  AQ_PMAX = 3,
  AQ_TMAX = 4,
  AQ_OAMAX = 5,
  AQ_HACK = 6,
  AQ_OTHER = 7,
};

/// Named constants.
enum AQ_CONSTANTS : std::int32_t {
  AQ_INVALID_LEVEL = 9999,  ///< no valid level; no good band
};

/// Which of its two times a time value uses.
enum AQ_OPTIME : std::int32_t {
  AQ_TIME_TOD = 0,  ///< time of day
  AQ_TIME_REF = 1,  ///< time relative to a reference
};

/// The outcome of reading or writing a file. There is no 1.
enum AQ_DataMessage : std::int32_t {
  AQ_DATA_OK = 0,
  AQ_DATA_FILE_ERROR = 2,
};

/// Whether, and by which test, one band of one record is masked by the ambient.
enum AQ_MASK_MODE : std::int32_t {
  NOT_MASKED = 0,
  MASKED_BY_MASK_CRITERION = 1,
  MASKED_BY_PRE_DETECT = 2,
  MASKED_BY_POST_DETECT = 3,
};

/// How a masked level was adjusted.
enum AQ_MASK_ADJUST : std::int32_t {
  NOT_ADJUSTED = 0,
  ENERGY_SUBTRACTION = 1,
  FREQUENCY_EXTRAPOLATION = 2,
  TIME_EXTRAPOLATION = 3,
  AVG_OF_ADJACENT = 4,
  CORRECTIONS_APPLIED = 5,
  ADJ_TO_REFERENCE = 6,
};

/// Which part a record plays in the integration of a metric; flags that combine.
enum AQ_METRIC_INTEG_VALUE : std::int32_t {
  AQ_INTEG_MAX = 1,
  AQ_INTEG_FST = 2,
  AQ_INTEG_LST = 4,
  AQ_INTEG_2ND = 8,
};

constexpr AQ_METRIC_INTEG_VALUE operator|(AQ_METRIC_INTEG_VALUE a, AQ_METRIC_INTEG_VALUE b) {
  return static_cast<AQ_METRIC_INTEG_VALUE>(static_cast<std::int32_t>(a) |
                                            static_cast<std::int32_t>(b));
}
constexpr AQ_METRIC_INTEG_VALUE operator&(AQ_METRIC_INTEG_VALUE a, AQ_METRIC_INTEG_VALUE b) {
  return static_cast<AQ_METRIC_INTEG_VALUE>(static_cast<std::int32_t>(a) &
                                            static_cast<std::int32_t>(b));
}
constexpr AQ_METRIC_INTEG_VALUE operator~(AQ_METRIC_INTEG_VALUE a) {
  return static_cast<AQ_METRIC_INTEG_VALUE>(~static_cast<std::int32_t>(a));
}

/// The kinds of metric that a metric record holds and a metric summary lists.
enum AQ_METRIC_TYPE : std::int32_t {
  AQ_METRIC_AWT = 1,
  AQ_METRIC_CWT = 2,
  AQ_METRIC_DWT = 3,
  AQ_METRIC_OA = 4,
  AQ_METRIC_PNL = 5,
  AQ_METRIC_PNLT = 6,
  AQ_METRIC_TONECOR = 7,
  AQ_METRIC_TONEBND = 8,
  AQ_METRIC_LGB = 9,
  AQ_METRIC_INTEG = 10,
};

}  // namespace aq
