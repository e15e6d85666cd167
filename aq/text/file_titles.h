#pragma once

#include <string_view>

// What the first line of each kind of file names it.
namespace aq::titles {

inline constexpr std::string_view kSpectralTimeHistory = "Spectral Time-History";
inline constexpr std::string_view kPositionTimeHistory = "Position Time-History";
inline constexpr std::string_view kMicrophonePosition = "Microphone Position File";
inline constexpr std::string_view kGeometricTimeHistory = "Geometric Time-History";
inline constexpr std::string_view kMaskingMap = "Masking Map";
inline constexpr std::string_view kVariableInitialization = "Variable Initialization File";
inline constexpr std::string_view kSpectrumRecord = "Spectrum Record";

}  // namespace aq::titles
