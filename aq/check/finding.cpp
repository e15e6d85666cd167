#include "aq/check/finding.h"

#include <algorithm>
#include <numeric>

#include "aq/check/reporter.h"
#include "aq/check/text_form.h"

namespace aq {
namespace {

constexpr auto kError = Severity::Error;
constexpr auto kWarning = Severity::Warning;
constexpr auto kNote = Severity::Note;
constexpr bool kHold = true;  // the data are as measured

constexpr FindingKind kKinds[] = {
    {"unreadable", kError, "the file cannot be read"},
    {"unknown-kind", kError, "the first lines match no kind of file"},
    {"compressed", kError, "the file is compressed or a workbook, not text"},
    {"utf-16", kError, "the text is UTF-16 (two bytes per character)"},
    {"line-ends", kError, "lines end in carriage returns only"},
    {"spreadsheet", kError, "a spreadsheet added commas or changed the separators"},
    {"decimal-comma", kError, "numbers are split at their decimal commas"},
    {"map-misfit", kError, "a masking map and its history do not match"},
    {"byte-order-mark", kWarning, "a byte order mark precedes the first line", kHold},
    {"file-name", kWarning, "the header names another file in the folder", kHold},
    {"keyword", kWarning, "a header line does not have the expected keyword", kHold},
    {"unknown-keyword", kWarning, "a line of a parameter file is ignored", kHold},
    {"lost-text", kWarning, "some text in a header line is ignored", kHold},
    {"other-word", kWarning, "an unknown word is ignored or read as another one", kHold},
    {"heading", kWarning, "the column headings are not as expected", kHold},
    {"record-count", kWarning, "the record count in the header differs from the data"},
    {"record-range", kWarning, "record numbers in the header differ from the data"},
    {"second-data-set", kWarning, "the data start again, or further lines are ignored"},
    {"record-repeated", kWarning, "a record number is duplicated; the last line is used"},
    {"record-falls", kWarning, "a record number is below the previous one"},
    {"record-gap", kWarning, "record numbers are missing"},
    {"extra-fields", kWarning, "a data line has more fields than are read"},
    {"time-step", kWarning, "a time does not follow from the times before it", kHold},
    {"time-order", kWarning, "a position's time is not after the previous one's", kHold},
    {"relative-time", kWarning, "a relative time does not match the time of day", kHold},
    {"start-time", kWarning, "the start time does not match the first time stamp", kHold},
    {"record-stuck", kWarning, "a record repeats all levels of the previous one"},
    {"contradiction", kWarning, "values contradict each other"},
    {"source-misfit", kWarning, "a file does not match one that it was made from"},
    {"position-jump", kWarning, "a position is far from those before and after"},
    {"level-range", kWarning, "a level is outside -20 to 200 dB"},
    {"level-jump", kWarning, "a level is far from those before and after"},
    {"lost-digits", kWarning, "a number has fewer decimals than the others"},
    {"mask-letters", kWarning, "a mask has unknown letters"},
    {"last-good-band", kWarning, "a last good band does not match the masks"},
    {"analyzer-mark", kWarning, "data are weighted, corrected, overloaded or invalid"},
    {"cut-short", kWarning, "the last line is, or seems to be, cut short"},
    {"same-levels", kWarning, "another file in the archive has the same levels", kHold},
    {"quotes", kNote, "a spreadsheet put header lines in quotes"},
    {"renamed", kNote, "the name in the header differs from the file's"},
    {"source-missing", kNote, "a file that the header names is not in its folder"},
    {"position-stuck", kNote, "positions stay the same as time passes"},
    {"time-gap", kNote, "no positions for an unusually long time"},
    {"level-invalid", kNote, "a level is 9999, which means not valid"},
    {"fix-rejected", kNote, "the quality figure of a fix is above the usual limit"},
    {"table", kNote, "a table made from measurements; not checked"},
};
static_assert(std::size(kKinds) == static_cast<std::size_t>(Kind::Table) + 1);

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
  if (const auto fault = faultOfLines(head_)) {
    findings_.clear();  // they follow from the fault
    return (*this)(fault->kind, {.line = fault->line}, fault->message);
  }
  const std::string_view found = failure.found;
  if (found.size() > 2 && isDecimalComma(found.substr(1, found.size() - 2))) {
    return (*this)(Kind::DecimalComma, {.line = failure.line, .field = failure.field},
                   failure.found + ": " + std::string(kDecimalCommaCure));
  }
  const FileFailure placed{.file = {}, .expected = failure.expected, .found = failure.found};
  (*this)(Kind::Unreadable, {.line = failure.line, .field = failure.field}, placed.message());
}

void Reporter::finish() {
  std::vector<std::size_t> order(findings_.size());
  std::iota(order.begin(), order.end(), std::size_t{0});
  std::stable_sort(order.begin(), order.end(), [this](std::size_t a, std::size_t b) {
    const FindingPlace& one = findings_[a].place;
    const FindingPlace& other = findings_[b].place;
    return one.line != other.line ? one.line < other.line : one.field < other.field;
  });
  for (const std::size_t place : order) sink_(findings_[place]);
  findings_.clear();
}

}  // namespace aq
