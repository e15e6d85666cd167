# The tests that run under wine. These do not run there:
#   aq_fault_tests     make POSIX system calls fail by redirecting them at link time
#   aq_thread_tests    the compiler for Windows has no thread sanitizer
#   consumer.*         instead, scripts/windows builds a host against the package that it makes
#   tool.*             instead, tool.same compares the outcomes of the native tool and this one
#   house.*, reference.*   do not depend on the system
#   Write.* and Platform.* of write_test.cpp   test owners, permissions, umask, /proc, /dev; the
#                      tests of write_windows_test.cpp replace them
#   recordings in Formats.GoodSamplesHaveTheListedValues   their levels are computed with the
#                      system's logarithm; second.opinion compares them to within 1e-9 dB
#   Analyzer.RunsAnExternalConverterWithoutAShell   runs shell scripts; replaced by Platform.RunsPrograms
# Python is called by its path: as a target it would run under wine and lose its output and exit status.
# AQ_NATIVE is a native build with print_file and aqdata; without it, there are no *.same tests.
add_test(NAME library COMMAND aq_tests
  --gtest_filter=-Analyzer.RunsAnExternalConverterWithoutAShell)

add_executable(print_file second/print_file.cpp second/values.cpp)
target_include_directories(print_file PRIVATE ${PROJECT_SOURCE_DIR})
target_link_libraries(print_file PRIVATE AQ_Data_Control aq_warnings)
add_executable(print_metrics second/print_metrics.cpp)
target_link_libraries(print_metrics PRIVATE AQ_Data_Control aq_warnings)
list(JOIN CMAKE_CROSSCOMPILING_EMULATOR " " emulator)
set(second ${CMAKE_CURRENT_SOURCE_DIR}/second)
add_test(NAME second.opinion
  COMMAND ${Python3_EXECUTABLE} ${second}/compare.py "${emulator} $<TARGET_FILE:print_file>"
    ${CMAKE_CURRENT_BINARY_DIR}/second 3000)
add_test(NAME second.metrics
  COMMAND ${Python3_EXECUTABLE} ${second}/compare_metrics.py
    "${emulator} $<TARGET_FILE:print_metrics>" 300)

set(AQ_NATIVE "" CACHE PATH "A native build to compare with")
if(AQ_NATIVE)
  add_test(NAME second.same
    COMMAND ${Python3_EXECUTABLE} ${second}/compare.py "${emulator} $<TARGET_FILE:print_file>"
      ${CMAKE_CURRENT_BINARY_DIR}/same 5000 --against ${AQ_NATIVE}/tests/print_file)
  add_test(NAME tool.same
    COMMAND ${Python3_EXECUTABLE} ${CMAKE_CURRENT_SOURCE_DIR}/tool/same_output.py
      ${AQ_NATIVE}/tools/aqdata/aqdata ${PROJECT_SOURCE_DIR}
      ${CMAKE_CROSSCOMPILING_EMULATOR} $<TARGET_FILE:aqdata>)
endif()
