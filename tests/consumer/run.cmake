# Builds the library as KIND, static or shared, installs it into a prefix below WORK, and builds and
# runs the host against that prefix: once through the CMake config package, once through pkg-config.
function(run)
  execute_process(COMMAND ${ARGV} WORKING_DIRECTORY ${WORK} COMMAND_ERROR_IS_FATAL ANY)
endfunction()

set(shared OFF)
if(KIND STREQUAL shared)
  set(shared ON)
endif()
set(prefix ${WORK}/prefix)
file(REMOVE_RECURSE ${prefix} ${WORK}/host)
file(MAKE_DIRECTORY ${WORK})
run(${CMAKE_COMMAND} -S ${SOURCE} -B library -G Ninja -DBUILD_SHARED_LIBS=${shared} -DAQ_WERROR=ON
  -DCMAKE_BUILD_TYPE=Debug -DCMAKE_UNITY_BUILD=ON -DCMAKE_CXX_COMPILER=${COMPILER} -DCMAKE_INSTALL_PREFIX=${prefix}
  -DCMAKE_INSTALL_LIBDIR=lib)
run(${CMAKE_COMMAND} --build library)
run(${CMAKE_COMMAND} --install library)
run(${CMAKE_COMMAND} -S ${SOURCE}/tests/consumer -B host -G Ninja -DCMAKE_PREFIX_PATH=${prefix}
  -DCMAKE_CXX_COMPILER=${COMPILER})
run(${CMAKE_COMMAND} --build host)
run(host/host)

set(ENV{PKG_CONFIG_PATH} ${prefix}/lib/pkgconfig)
set(ENV{LD_LIBRARY_PATH} ${prefix}/lib)
execute_process(COMMAND pkg-config --cflags --libs AQ_Data_Control
  OUTPUT_VARIABLE flags OUTPUT_STRIP_TRAILING_WHITESPACE COMMAND_ERROR_IS_FATAL ANY)
separate_arguments(flags UNIX_COMMAND "${flags}")
run(${COMPILER} -std=c++20 ${SOURCE}/tests/consumer/host.cpp -o host/by-pkg-config ${flags})
run(host/by-pkg-config)
