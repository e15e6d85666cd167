#pragma once

#include "component/com.h"
#include "component/held.h"

namespace aq::com {

/// The control `AQ_Data`, which shows the library's icon on a form.
[[nodiscard]] Held<IUnknown> makeControl();

}  // namespace aq::com
