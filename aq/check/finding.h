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

/// How much a finding matters.
enum class Severity {
  Note,     ///< worth knowing; the data are as they should be
  Warning,  ///< what is read may not be what was measured
  Error,    ///< the file, or the pair of files, cannot be used
};

/// One kind of finding. The name stays the same from release to release.
struct FindingKind {
  std::string_view name;
  Severity severity;
  std::string_view meaning;  ///< in one line
  bool dataHold = false;     ///< of a warning: the data are those that were measured even so

  /// Whether the data that are read may not be those that were measured.
  [[nodiscard]] constexpr bool doubtsData() const {
    return severity == Severity::Error || (severity == Severity::Warning && !dataHold);
  }
};

/// All kinds of finding, in the order of their severity.
[[nodiscard]] AQ_API std::span<const FindingKind> findingKinds();

/// "note", "warning" or "error".
[[nodiscard]] AQ_API std::string_view severityText(Severity severity);

/// Where in a file a finding lies.
struct FindingPlace {
  std::size_t line = 0;   ///< from 1; 0 when it is the whole file
  std::size_t field = 0;  ///< from 1; 0 when it is the whole line
  std::optional<std::int32_t> record = {};
  std::optional<std::int16_t> band = {};
};

/// What a person should know about a file.
struct Finding {
  const FindingKind& kind;
  FindingPlace place;
  std::string message;  ///< in one line, without the place
};

/// Takes findings one by one, in the order of the file's lines; those of the whole file come first.
using FindingSink = std::function<void(const Finding&)>;

}  // namespace aq
