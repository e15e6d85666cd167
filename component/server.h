#pragma once

#include <string>

#include "component/com.h"

namespace aq::com {

/// The handle of the DLL.
[[nodiscard]] HINSTANCE module();
[[nodiscard]] std::wstring modulePath();

/// Keeps the DLL loaded for as long as it exists.
class InUse {
 public:
  InUse() noexcept;
  InUse(const InUse&) = delete;
  InUse& operator=(const InUse&) = delete;
  ~InUse();
};

}  // namespace aq::com
