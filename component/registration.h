#pragma once

#include "component/com.h"

namespace aq::com {

enum class Scope { Machine, User };

// Registers the classes and the type library for hosts. If registration fails half-way, the entries
// already written are removed. Removal keeps the entries shared with the DLL of the other size (32
// or 64 bits).
[[nodiscard]] HRESULT registerServer(Scope scope);
[[nodiscard]] HRESULT unregisterServer(Scope scope);

}  // namespace aq::com
