#pragma once

#include <string>

#include "component/com.h"

namespace aq::com {

/// The handle of the DLL.
[[nodiscard]] HINSTANCE module();
[[nodiscard]] std::wstring modulePath();

/// Counts the objects that keep the DLL loaded.
class InUse {
 public:
  InUse() noexcept;
  InUse(const InUse&) = delete;
  InUse& operator=(const InUse&) = delete;
  ~InUse();
};

}  // namespace aq::com
