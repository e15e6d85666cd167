#pragma once

#include <cstddef>
#include <string>
#include <utility>

#include "aq/check/finding.h"
#include "aq/core/file_failure.h"

namespace aq {

/// In the order of `findingKinds`.
enum class Kind : std::size_t {
  Unreadable,
  UnknownKind,
  MapMisfit,
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
  LevelRange,
  MaskLetters,
  LastGoodBand,
  LevelInvalid,
  FixRejected,
};

/// Hands findings on to whoever asked for them.
class Reporter {
 public:
  explicit Reporter(const FindingSink& sink) : sink_(sink) {}

  void operator()(Kind kind, const FindingPlace& place, std::string message) const {
    sink_({findingKinds()[static_cast<std::size_t>(kind)], place, std::move(message)});
  }

  void unreadable(const FileFailure& failure) const;

 private:
  const FindingSink& sink_;
};

}  // namespace aq
