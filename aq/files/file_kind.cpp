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

/// `lines` stands at the first line. Throws `ReadFailure` when the line behind the header is none.
FileKind kindByShape(LineReader& lines) {
  while (lines.number() <= kTrackingHeaderLines) {
    if (!lines.next()) return FileKind::Unknown;
  }
  static_cast<void>(trackingLineFrom(lines));
  return FileKind::Tracking;
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
  } catch (const ReadFailure&) {
    return FileKind::Unknown;
  }
}

}  // namespace aq
