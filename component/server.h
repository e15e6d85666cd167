#pragma once

#include <string>

#include "component/com.h"

namespace aq::com {

/// The DLL.
[[nodiscard]] HINSTANCE module();
[[nodiscard]] std::wstring modulePath();

/// Counts what keeps the DLL loaded: as long as one lives.
class InUse {
 public:
  InUse() noexcept;
  InUse(const InUse&) = delete;
  InUse& operator=(const InUse&) = delete;
  ~InUse();
};

}  // namespace aq::com
