#pragma once

#include <cstddef>
#include <functional>
#include <string>
#include <utility>

#include "aq/core/export.h"
#include "aq/sdf/recording.h"

namespace aq::sdf {

/// A trace that is wanted: its place among the sets of traces, and its own in the set.
struct WantedTrace {
  std::size_t set;
  std::size_t trace;
};

/// Reads the text of a recording: what `textOf` writes, and what other programs print of it (fields
/// by name, codes by number or word, values one or more a line). A text of values alone is read
/// with the records of the `.HDR` file beside it. Values that do not say whose they are belong to
/// all traces in turn, or, when there are fewer, to the scans of the trace that `wanted` names.
/// Throws `ReadFailure` and `platform::SystemError`.
[[nodiscard]] AQ_API Recording
textRecording(const std::string& path, const std::function<WantedTrace(const Recording&)>& wanted);

}  // namespace aq::sdf
