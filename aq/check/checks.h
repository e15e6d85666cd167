#pragma once

#include <string>

#include "aq/check/reporter.h"
#include "aq/spectral/spectrum.h"

// The checks of each kind of file. They throw what readers of text throw when a file changes while
// it is checked.
namespace aq {

void checkHistory(const std::string& path, const Reporter& report);
void checkSpectrumRecord(const std::string& path, const Reporter& report);
void checkMaskingMap(const std::string& path, const Reporter& report);
void checkPositions(const std::string& path, const Reporter& report);
void checkTracking(const std::string& path, const Reporter& report);
void checkMicrophone(const std::string& path, const Reporter& report);
void checkGeometry(const std::string& path, const Reporter& report);
void checkParameters(const std::string& path, const Reporter& report);

/// Reports lines behind line `last` that hold anything: nobody reads them.
void checkNothingBehind(const std::string& path, std::size_t last, const Reporter& report);

}  // namespace aq
