# Debian's mingw-w64 for 32-bit Windows; programs run under the wine that scripts/windows unpacks.
set(processor i686)
set(host i686-w64-mingw32)
include(${CMAKE_CURRENT_LIST_DIR}/windows.cmake)
