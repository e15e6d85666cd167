# Debian's mingw-w64 for 32-bit Windows; what is built runs under wine32.
set(processor i686)
set(host i686-w64-mingw32)
set(loader wine)
include(${CMAKE_CURRENT_LIST_DIR}/windows.cmake)
