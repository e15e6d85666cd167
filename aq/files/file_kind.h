#pragma once

#include <string>

#include "aq/core/export.h"

namespace aq {

/// The kinds of file that the library reads.
enum class FileKind {
  SpectralTimeHistory,
  PositionTimeHistory,
  MicrophonePosition,
  GeometricTimeHistory,
  MaskingMap,
  VariableInitialization,
  SpectrumRecord,
  Tracking,
  Unknown,
  FixedColumnHistory,
  AnalyzerRecording,
};

/// What a file is: by the title in its first line or how that begins, or as a tracking file by the
/// shape of the lines behind its header. Looks at no more than its first 64 KiB. A file that cannot
/// be read is `Unknown`.
[[nodiscard]] AQ_API FileKind kindOfFile(const std::string& path);

}  // namespace aq
