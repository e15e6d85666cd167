#include "aq/files/file_kind.h"

#include <string_view>
#include <utility>

#include "aq/core/platform.h"
#include "aq/geometry/tracking_line.h"
#include "aq/text/fields.h"
#include "aq/text/file_titles.h"
#include "aq/text/header_reader.h"

namespace aq {
namespace {

constexpr std::size_t kLookedAt = std::size_t{64} * 1024;

constexpr std::pair<std::string_view, FileKind> kTitles[] = {
    {titles::kSpectralTimeHistory, FileKind::SpectralTimeHistory},
    {titles::kPositionTimeHistory, FileKind::PositionTimeHistory},
    {titles::kMicrophonePosition, FileKind::MicrophonePosition},
    {titles::kGeometricTimeHistory, FileKind::GeometricTimeHistory},
    {titles::kMaskingMap, FileKind::MaskingMap},
    {titles::kVariableInitialization, FileKind::VariableInitialization},
    {titles::kSpectrumRecord, FileKind::SpectrumRecord}};

bool isTrackingLine(const LineReader& lines) {
  try {
    static_cast<void>(trackingLineFrom(lines));
    return true;
  } catch (const ReadFailure&) {
    return false;
  }
}

/// `lines` stands at the first line. One good fix among the first ten is enough: the reader then
/// says what is wrong with the others.
FileKind kindByShape(LineReader& lines) {
  constexpr std::size_t kLast = kTrackingHeaderLines + 10;
  while (lines.number() < kLast && lines.next()) {
    if (lines.number() > kTrackingHeaderLines && isTrackingLine(lines)) return FileKind::Tracking;
  }
  return FileKind::Unknown;
}

}  // namespace

FileKind kindOfFile(const std::string& path) {
  try {
    LineReader lines(path, kLookedAt);
    HeaderReader header(lines);
    const std::string_view title = header.anyTitle();
    for (const auto& [name, kind] : kTitles) {
      if (title == name) return kind;
    }
    return kindByShape(lines);
  } catch (const platform::SystemError&) {
    return FileKind::Unknown;
  }
}

}  // namespace aq
