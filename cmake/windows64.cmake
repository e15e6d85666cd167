# Debian's mingw-w64 for 64-bit Windows; programs run under wine.
set(processor x86_64)
set(host x86_64-w64-mingw32)
set(wine /usr/lib/wine/wine64)
include(${CMAKE_CURRENT_LIST_DIR}/windows.cmake)
