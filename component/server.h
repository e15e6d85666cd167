#pragma once

#include <string>

#include "component/com.h"

namespace aq::com {

/// The handle of the DLL.
[[nodiscard]] HINSTANCE module();
[[nodiscard]] std::wstring modulePath();

/// While one of these exists, COM keeps the DLL loaded.
class InUse {
 public:
  InUse() noexcept;
  InUse(const InUse&) = delete;
  InUse& operator=(const InUse&) = delete;
  ~InUse();
};

}  // namespace aq::com
