#pragma once

#include <cstdint>
#include <string>

#include "aq/check/reporter.h"
#include "aq/spectral/spectrum.h"

// The checks of each kind of file. They throw what readers of text throw when a file changes while
// it is checked.
namespace aq {

void checkHistory(const std::string& path, const Reporter& report);
void checkSpectrumRecord(const std::string& path, const Reporter& report);
void checkMaskingMap(const std::string& path, const Reporter& report);
void checkMapFit(const std::string& historyPath, const std::string& mapPath,
                 const Reporter& report);

/// Where the history that a masking map names as its source should be: beside the map. Empty when
/// the map does not read or names none.
std::string historyOfMap(const std::string& mapPath);

void checkPositions(const std::string& path, const Reporter& report);
void checkTracking(const std::string& path, const Reporter& report);
void checkFixQuality(const std::string& path, std::uint8_t limit, const Reporter& report);
void checkMicrophone(const std::string& path, const Reporter& report);
void checkGeometry(const std::string& path, const Reporter& report);
void checkParameters(const std::string& path, const Reporter& report);

/// Reports lines behind line `last` that hold anything: nobody reads them.
void checkNothingBehind(const std::string& path, std::size_t last, const Reporter& report);

}  // namespace aq
