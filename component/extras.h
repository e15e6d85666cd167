#pragma once

#include "component/class_table.h"
#include "component/model.h"

namespace aq::com {

/// The implementation of a member that only the component has.
struct ExtraCalls {
  Thunk get;
  Thunk put = {};
};
[[nodiscard]] ExtraCalls callsOf(const Extra& extra);

}  // namespace aq::com
