#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "aq/check/finding.h"
#include "aq/core/file_failure.h"

namespace aq {

/// The kinds of finding, in the order of `findingKinds`.
enum class Kind : std::size_t {
  Unreadable,
  UnknownKind,
  Compressed,
  WideText,
  LineEnds,
  Spreadsheet,
  DecimalComma,
  MapMisfit,
  ByteOrderMark,
  FileName,
  Keyword,
  UnknownKeyword,
  LostText,
  OtherWord,
  Heading,
  RecordCount,
  RecordRange,
  SecondDataSet,
  RecordRepeated,
  RecordFalls,
  RecordGap,
  ExtraFields,
  TimeStep,
  TimeOrder,
  RelativeTime,
  StartTime,
  RecordStuck,
  Contradiction,
  SourceMisfit,
  PositionJump,
  LevelRange,
  LevelJump,
  LostDigits,
  MaskLetters,
  LastGoodBand,
  AnalyzerMark,
  CutShort,
  SameLevels,
  Quotes,
  Renamed,
  SourceMissing,
  PositionStuck,
  TimeGap,
  LevelInvalid,
  FixRejected,
  Table,
};

/// Collects the findings about a file and passes them on in line order.
class Reporter {
 public:
  explicit Reporter(const FindingSink& sink) : sink_(sink) {}

  void operator()(Kind kind, const FindingPlace& place, std::string message) const {
    findings_.push_back(
        {findingKinds()[static_cast<std::size_t>(kind)], place, std::move(message)});
  }

  /// `head` is the start of the file, which may show the cause of a failure.
  void fileBegins(std::string head) { head_ = std::move(head); }
  /// Reports a failed read, or the damage that seems to have caused it. Damage that the head shows
  /// also replaces the findings so far.
  void unreadable(const FileFailure& failure) const;

  /// Keeps the digest of a history's levels, for comparison with other histories.
  void levels(std::uint64_t digest) const { levels_ = digest; }
  [[nodiscard]] std::optional<std::uint64_t> levels() const { return levels_; }

  /// Passes on the findings, those about the whole file first. Exceptions from the sink reach the
  /// caller.
  void finish();

 private:
  const FindingSink& sink_;
  std::string head_;
  // Mutable because checks receive a const reporter.
  mutable std::vector<Finding> findings_;
  mutable std::optional<std::uint64_t> levels_;
};

}  // namespace aq
