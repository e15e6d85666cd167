#include "aq/check/finding.h"

#include "aq/check/reporter.h"

namespace aq {
namespace {

constexpr auto kError = Severity::Error;
constexpr auto kWarning = Severity::Warning;
constexpr auto kNote = Severity::Note;

constexpr FindingKind kKinds[] = {
    {"unreadable", kError, "the reader fails here"},
    {"unknown-kind", kError, "the first lines are those of no kind of file"},
    {"map-misfit", kError, "a masking map and its history do not fit each other"},
    {"keyword", kWarning, "a header line has the keyword of another place"},
    {"unknown-keyword", kWarning, "a line of parameters that is passed over"},
    {"lost-text", kWarning, "text of a header line that is not read"},
    {"other-word", kWarning, "a word that is not known is read as another"},
    {"heading", kWarning, "the headings do not name the bands of the data"},
    {"record-count", kWarning, "the header counts other than the data lines"},
    {"record-range", kWarning, "the header has other record numbers than the data"},
    {"second-data-set", kWarning, "the data begin again, or go on unread"},
    {"record-repeated", kWarning, "a record number stands twice; the later line counts"},
    {"record-falls", kWarning, "a record number is below the one before it"},
    {"record-gap", kWarning, "record numbers are left out"},
    {"extra-fields", kWarning, "a data line has more fields than are read"},
    {"time-step", kWarning, "a time is not half a second a record on"},
    {"time-order", kWarning, "a position is not later than the one before"},
    {"relative-time", kWarning, "a relative time does not fit the time of day"},
    {"level-range", kWarning, "a level is outside -20 to 200 dB"},
    {"mask-letters", kWarning, "a mask has letters that stand for nothing"},
    {"last-good-band", kWarning, "a last good band is not the one that the masks give"},
    {"level-invalid", kNote, "a level is 9999, not valid"},
    {"fix-rejected", kNote, "a tracking fix has a figure above the usual limit"},
};
static_assert(std::size(kKinds) == static_cast<std::size_t>(Kind::FixRejected) + 1);

}  // namespace

std::span<const FindingKind> findingKinds() { return kKinds; }

std::string_view severityText(Severity severity) {
  switch (severity) {
    case Severity::Note: return "note";
    case Severity::Warning: return "warning";
    case Severity::Error: break;
  }
  return "error";
}

void Reporter::unreadable(const FileFailure& failure) const {
  const FileFailure placed{.file = {}, .expected = failure.expected, .found = failure.found};
  (*this)(Kind::Unreadable, {.line = failure.line, .field = failure.field}, placed.message());
}

}  // namespace aq
