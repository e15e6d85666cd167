#pragma once

// What Windows has of COM. The first header defines what the others need.
// clang-format off
#include <windows.h>
#include <oleauto.h>
#include <ocidl.h>
#include <olectl.h>
// clang-format on
