#pragma once

// COM headers. The first one must come first: the others need it.
// clang-format off
#include <windows.h>
#include <oleauto.h>
#include <ocidl.h>
#include <olectl.h>
// clang-format on
