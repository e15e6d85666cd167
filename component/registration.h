#pragma once

#include "component/com.h"

namespace aq::com {

enum class Scope { Machine, User };

// What hosts find classes and the type library by. A failure half-way takes back what was written.
// Taking back leaves what the other size of the DLL, 32 or 64 bits, shares.
[[nodiscard]] HRESULT registerServer(Scope scope);
[[nodiscard]] HRESULT unregisterServer(Scope scope);

}  // namespace aq::com
