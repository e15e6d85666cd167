#pragma once

#include "component/com.h"

namespace aq::com {

enum class Scope { Machine, User };

// Registers the classes and the type library for hosts. If this fails half-way, what was written
// is removed. Removal keeps what the DLL of the other size (32 or 64 bits) shares with this one.
[[nodiscard]] HRESULT registerServer(Scope scope);
[[nodiscard]] HRESULT unregisterServer(Scope scope);

}  // namespace aq::com
