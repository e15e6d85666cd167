// The function that the fuzzer calls with each input, for the target that the build names.
#include <cstddef>
#include <cstdint>

#include "fuzz/targets.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  aq::fuzz::run(AQ_FUZZ_TARGET, {reinterpret_cast<const char*>(data), size});
  return 0;
}
