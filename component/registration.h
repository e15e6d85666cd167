#pragma once

#include "component/com.h"

namespace aq::com {

enum class Scope { Machine, User };

// Registers the classes and the type library for hosts. If registration fails halfway, the entries
// already written are removed. Removal keeps the entries that the 32-bit and the 64-bit DLL
// share.
[[nodiscard]] HRESULT registerServer(Scope scope);
[[nodiscard]] HRESULT unregisterServer(Scope scope);

}  // namespace aq::com
