#pragma once

#include "component/com.h"
#include "component/held.h"

namespace aq::com {

/// The control `AQ_Data`, which shows on a form that the library is there.
[[nodiscard]] Held<IUnknown> makeControl();

}  // namespace aq::com
