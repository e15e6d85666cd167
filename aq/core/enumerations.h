#pragma once

#include <cstdint>

namespace aq {

// Hosts store and exchange these numbers, so neither the values nor the gaps between them ever
// change.

/// How the levels of one record were averaged.
enum AQ_AverageMethod : std::int32_t {
  AQ_LINEAR = 0,    ///< linear: mean energy, all instants weighted equally
  AQ_TRUSLO = 1,    ///< true slow: slow response of the analyzer's own detector
  AQ_4S100 = 2,     ///< slow response from four records, weights sum to 100 %
  AQ_4S95 = 3,      ///< slow response from four records, weights sum to 95 %
  AQ_CONTEXPO = 4,  ///< slow response by continuous exponential averaging
  AQ_NA = 99,       ///< not set
};

/// Which instant the time stamp of a record marks.
enum AQ_TimeStampType : std::int32_t {
  AQ_START = 0,    ///< its start
  AQ_MIDPT = 1,    ///< its middle
  AQ_END = 2,      ///< its end
  AQ_ICAOSLO = 3,  ///< 0.75 s before its end, where a slow-response level belongs
  AQ_OLDSLO = 4,   ///< 1 s before its end, the older rule for slow response
};

/// Which event the reference time of a history marks.
enum AQ_RefTimeType : std::int32_t {
  AQ_START_REF = 0,  ///< start of the measurement
  AQ_OVERHEAD = 1,   ///< source overhead
  AQ_AMAX = 2,       ///< largest A-weighted level
  AQ_PMAX = 3,       ///< largest perceived noise level
  AQ_TMAX = 4,       ///< largest tone-corrected perceived noise level
  AQ_OAMAX = 5,      ///< largest overall level
  AQ_HACK = 6,       ///< time mark set by hand during the measurement
  AQ_OTHER = 7,      ///< another event
};

/// Named constants.
enum AQ_CONSTANTS : std::int32_t {
  AQ_INVALID_LEVEL = 9999,  ///< no valid level; no good band
};

/// Which of its two times an `AQ_Time` returns as `WorkingTime`.
enum AQ_OPTIME : std::int32_t {
  AQ_TIME_TOD = 0,  ///< time of day
  AQ_TIME_REF = 1,  ///< time relative to a reference
};

/// The outcome of reading or writing a file; after an error, `lastFailure()` gives the reason. The
/// value 1 is unused.
enum AQ_DataMessage : std::int32_t {
  AQ_DATA_OK = 0,
  AQ_DATA_FILE_ERROR = 2,
};

/// Whether, and by which test, one band of one record is masked by the ambient.
enum AQ_MASK_MODE : std::int32_t {
  NOT_MASKED = 0,                ///< the level is that of the source
  MASKED_BY_MASK_CRITERION = 1,  ///< exceeds the ambient by less than the criterion, if at all
  MASKED_BY_PRE_DETECT = 2,      ///< ambient or electrical noise, whose energy adds to the source's
  MASKED_BY_POST_DETECT = 3,     ///< instrument noise floor, which adds no energy
};

/// How a masked level was adjusted.
enum AQ_MASK_ADJUST : std::int32_t {
  NOT_ADJUSTED = 0,             ///< as measured
  ENERGY_SUBTRACTION = 1,       ///< energy of the ambient subtracted
  FREQUENCY_EXTRAPOLATION = 2,  ///< extrapolated from other bands of the same record
  TIME_EXTRAPOLATION = 3,       ///< extrapolated from the same band in other records
  AVG_OF_ADJACENT = 4,          ///< mean of the adjacent bands
  CORRECTIONS_APPLIED = 5,      ///< other corrections
  ADJ_TO_REFERENCE = 6,         ///< adjusted to reference conditions
};

/// The role of a record in the integration of a metric; flags that can be combined.
enum AQ_METRIC_INTEG_VALUE : std::int32_t {
  AQ_INTEG_MAX = 1,  ///< largest PNLT
  AQ_INTEG_FST = 2,  ///< first record integrated, at a 10 dB-down limit
  AQ_INTEG_LST = 4,  ///< last record integrated, at a 10 dB-down limit
  AQ_INTEG_2ND = 8,  ///< second peak within 2 dB of the largest
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
  AQ_METRIC_AWT = 1,      ///< A-weighted level, dB
  AQ_METRIC_CWT = 2,      ///< C-weighted level, dB
  AQ_METRIC_DWT = 3,      ///< D-weighted level, dB
  AQ_METRIC_OA = 4,       ///< overall level, dB
  AQ_METRIC_PNL = 5,      ///< perceived noise level, PNdB
  AQ_METRIC_PNLT = 6,     ///< tone-corrected perceived noise level, TPNdB
  AQ_METRIC_TONECOR = 7,  ///< tone correction, dB
  AQ_METRIC_TONEBND = 8,  ///< band that caused the tone correction
  AQ_METRIC_LGB = 9,      ///< last good band
  AQ_METRIC_INTEG = 10,   ///< role in the EPNL integration, flags
};

}  // namespace aq
