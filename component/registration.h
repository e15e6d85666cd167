#pragma once

#include "component/com.h"

namespace aq::com {

enum class Scope { Machine, User };

// Register and unregister the classes and the type library for hosts. If registration fails
// halfway, the entries already written are removed. While the DLL of the other word size is
// registered, unregistering keeps the class names, which both DLLs share.
[[nodiscard]] HRESULT registerServer(Scope scope);
[[nodiscard]] HRESULT unregisterServer(Scope scope);

}  // namespace aq::com
