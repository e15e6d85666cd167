#pragma once

#include <optional>
#include <string>

#include "aq/core/enumerations.h"
#include "aq/core/export.h"
#include "aq/text/header_observer.h"

namespace aq {

/// What a history file's header names as its reference time type. `AQ_DataSTH` leaves the history's
/// at `AQ_START_REF`, as hosts know it; who writes the history again has the line watched, and sets
/// the type.
class AQ_API ReferenceTypeLine {
 public:
  /// Takes the word of the line, if `line` is the one: for `observeHeader`.
  void see(const HeaderLine& line);

  /// The word as it is written; empty when there was none.
  [[nodiscard]] const std::string& word() const { return word_; }

  /// What the word stands for, in any case; nothing if it is no word of the interface.
  [[nodiscard]] std::optional<AQ_RefTimeType> type() const;

 private:
  std::string word_;
};

}  // namespace aq
