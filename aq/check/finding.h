#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <optional>
#include <span>
#include <string>
#include <string_view>

#include "aq/core/export.h"

namespace aq {

/// How serious a finding is.
enum class Severity {
  Note,     ///< worth knowing; the data are as measured
  Warning,  ///< probably a fault; the data may differ from what was measured
  Error,    ///< the file, or pair of files, cannot be used
};

/// One kind of finding. The name never changes between releases.
struct FindingKind {
  std::string_view name;
  Severity severity;
  std::string_view meaning;  ///< one line
  bool dataHold = false;     ///< whether the data are as measured despite a warning

  /// Whether the data may differ from what was measured.
  [[nodiscard]] constexpr bool doubtsData() const {
    return severity == Severity::Error || (severity == Severity::Warning && !dataHold);
  }
};

/// All kinds of finding, from errors to notes.
[[nodiscard]] AQ_API std::span<const FindingKind> findingKinds();

/// "note", "warning" or "error".
[[nodiscard]] AQ_API std::string_view severityText(Severity severity);

/// The place of a finding in a file.
struct FindingPlace {
  std::size_t line = 0;   ///< from 1; 0 for the whole file
  std::size_t field = 0;  ///< from 1; 0 for the whole line
  std::optional<std::int32_t> record = {};
  std::optional<std::int16_t> band = {};
};

/// Something that is or may be wrong with a file.
struct Finding {
  const FindingKind& kind;
  FindingPlace place;
  std::string message;  ///< one line, without the place
};

/// Receives findings one by one, in line order; those about the whole file come first.
using FindingSink = std::function<void(const Finding&)>;

}  // namespace aq
