#pragma once

#include <string>

#include "aq/core/export.h"

namespace aq {

/// The kinds of file that the library recognises.
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

/// The kind of a file, from the title in its first line, from the start of that line or, for a
/// tracking file, from the shape of the lines after its header. Reads at most the first 64 KiB. A
/// file that cannot be read is `Unknown`.
[[nodiscard]] AQ_API FileKind kindOfFile(const std::string& path);

}  // namespace aq
