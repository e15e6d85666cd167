#pragma once

#include <cstddef>
#include <functional>
#include <string>
#include <utility>

#include "aq/core/export.h"
#include "aq/sdf/recording.h"

namespace aq::sdf {

/// A requested trace: the index of its set, and its index in the set.
struct WantedTrace {
  std::size_t set;
  std::size_t trace;
};

/// Reads a recording from a text file, as written by `textOf` or printed by other programs (fields
/// by name, codes by number or word, one or more values per line). If the file has only values, the
/// records come from the `.HDR` file of the same name in its folder. Values that do not name their
/// trace belong to all traces in turn if there are exactly enough of them, otherwise to the scans
/// of the trace that `wanted` returns; other values must not name theirs then. Throws `ReadFailure`
/// and `platform::SystemError`.
[[nodiscard]] AQ_API Recording
textRecording(const std::string& path, const std::function<WantedTrace(const Recording&)>& wanted);

}  // namespace aq::sdf
