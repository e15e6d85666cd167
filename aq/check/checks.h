#pragma once

#include <cstdint>
#include <string>

#include "aq/check/reporter.h"
#include "aq/files/formats.h"

namespace aq {

/// A file in the format that `File` reads.
template <class File>
struct FileOf {
  const std::string& path;
};

// The checks for each format. They and the comparisons below may throw `ReadFailure`,
// `platform::SystemError` or `Error` if a file changes during the check, if a recording cannot be
// used, or if there are more than 32767 records to compare.
void check(FileOf<AQ_DataSTH> file, const Reporter& report);
void check(FileOf<AQ_DataSSR> file, const Reporter& report);
void check(FileOf<AQ_DataTSPI> of, const Reporter& report);
void check(FileOf<AQ_DataMIC> file, const Reporter& report);
void check(FileOf<AQ_DataHP3565> file, const Reporter& report);
void check(FileOf<AQ_DataINI> of, const Reporter& report);
void check(FileOf<AQ_DataSPC> of, const Reporter& report);
/// Returns the map; empty if it cannot be read.
Content<AQ_HeaderMask, AQ_MaskMap> check(FileOf<AQ_DataMask> file, const Reporter& report);

/// Returns the positions; empty if they cannot be used.
Content<AQ_HeaderPTH, AQ_PositionTimeHistory> check(FileOf<AQ_DataPTH> file,
                                                    const Reporter& report);

/// Returns the geometry; empty if it cannot be used.
Content<AQ_HeaderGTH, AQ_GeometryTimeHistory> check(FileOf<AQ_DataGTH> file,
                                                    const Reporter& report);

/// The history in a file of any format; empty if there is none or it cannot be read.
Content<AQ_HeaderSTH, AQ_SpectralTimeHistory> historyIn(const std::string& path);

/// Compare positions and geometry with their source files, if these are in the same folder.
void checkSources(const Content<AQ_HeaderPTH, AQ_PositionTimeHistory>& read,
                  const std::string& path, const Reporter& report);
void checkSources(const Content<AQ_HeaderGTH, AQ_GeometryTimeHistory>& read,
                  const std::string& path, const Reporter& report);

void checkQuality(FileOf<AQ_DataTSPI> file, std::uint8_t limit, const Reporter& report);
void checkMapFit(const AQ_SpectralTimeHistory& history, const std::string& historyName,
                 const AQ_MaskMap& map, const Reporter& report);

/// Reports non-empty lines after line `last`, which the reader ignores.
void checkNothingAfter(const std::string& path, std::size_t last, const Reporter& report);

}  // namespace aq
