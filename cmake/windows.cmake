# Settings shared by the 64-bit and 32-bit Windows toolchains.
set(CMAKE_SYSTEM_NAME Windows)
set(CMAKE_SYSTEM_PROCESSOR ${processor})
set(CMAKE_C_COMPILER ${host}-gcc-posix)  # GoogleTest names C as well
set(CMAKE_CXX_COMPILER ${host}-g++-posix)  # whose standard library has threads
set(CMAKE_RC_COMPILER ${host}-windres)
set(CMAKE_EXE_LINKER_FLAGS_INIT -static)  # nothing to install in addition to what is built
set(CMAKE_SHARED_LINKER_FLAGS_INIT -static)
set(CMAKE_MODULE_LINKER_FLAGS_INIT -static)
set(ZLIB_USE_STATIC_LIBS ON)
set(CMAKE_FIND_ROOT_PATH /usr/${host})
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_PACKAGE ONLY)
set(AQ_WINE "${wine}" CACHE FILEPATH "Runs what is built; without it, nothing is run")
if(AQ_WINE AND EXISTS ${AQ_WINE})
  set(CMAKE_CROSSCOMPILING_EMULATOR ${AQ_WINE})
endif()
