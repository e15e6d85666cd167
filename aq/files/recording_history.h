#pragma once

#include <cstdint>
#include <memory>
#include <string>

#include "aq/files/header_sth.h"
#include "aq/sdf/recording.h"
#include "aq/spectral/spectral_time_history.h"

namespace aq {

/// The settings for the levels of a recording.
struct RecordingSettings {
  std::int16_t channel = 1;
  double recordLength = 0.5;  ///< seconds, used if scans have no time of their own
  double calibration = 0;     ///< dB added to every level
};

/// The history header for a recording. Throws `ReadFailure`.
[[nodiscard]] std::shared_ptr<AQ_HeaderSTH> headerOf(const sdf::Recording& recording,
                                                     const std::string& file,
                                                     const RecordingSettings& settings);

/// The levels of one trace of a recording: one record per scan, or a single one for data without
/// scans. Throws `ReadFailure`.
[[nodiscard]] std::shared_ptr<AQ_SpectralTimeHistory> historyOf(const sdf::Recording& recording,
                                                                const RecordingSettings& settings);

}  // namespace aq
