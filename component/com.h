#pragma once

// The headers of COM. The first one defines what the others need.
// clang-format off
#include <windows.h>
#include <oleauto.h>
#include <ocidl.h>
#include <olectl.h>
// clang-format on
