#include "aq/files/file_kind.h"

#include <string_view>

#include "aq/core/platform.h"
#include "aq/files/formats.h"
#include "aq/geometry/tracking_line.h"
#include "aq/text/fields.h"
#include "aq/text/header_reader.h"

namespace aq {
namespace {

constexpr std::size_t kLookedAt = std::size_t{64} * 1024;

/// The kind whose files have this title or, for files without titles, begin like this line;
/// `Unknown` if there is none.
FileKind kindOfFirstLine(std::string_view line, std::string_view title) {
  auto kind = FileKind::Unknown;
  forFormats([&]<class File, class Header, class Model>(const Format<File, Header, Model>& format) {
    if constexpr (requires { File::kTitle; }) {
      if (title == File::kTitle) kind = format.kind;
    } else if constexpr (requires { File::kBeginning; }) {
      if (line.starts_with(File::kBeginning)) kind = format.kind;
    }
  });
  return kind;
}

// A recording's first line when it is read as text: it ends at the type of the first record, 10,
// which is a line feed.
constexpr std::string_view kRecordingLine{"B\0\0", 3};

bool isTrackingLine(const LineReader& lines) {
  try {
    static_cast<void>(trackingLineFrom(lines));
    return true;
  } catch (const ReadFailure&) {
    return false;
  }
}

/// `lines` must be at the first line. One valid line among the first ten data lines is enough; the
/// reader reports what is wrong with the others.
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
    if (lines.line() == kRecordingLine) return FileKind::AnalyzerRecording;
    const FileKind kind = kindOfFirstLine(lines.line(), title);
    return kind == FileKind::Unknown ? kindByShape(lines) : kind;
  } catch (const platform::SystemError&) {
    return FileKind::Unknown;
  }
}

}  // namespace aq
