// libFuzzer's entry to the one target that the build names.
#include "fuzz/fuzz.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    util_fuzz::UTIL_FUZZ_TARGET({reinterpret_cast<const char*>(data), size});
    return 0;
}
