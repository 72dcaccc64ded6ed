// Any sequence of operations of the engine (tests/engine/random_operations.h) out of what the fuzzer thinks of.
#include "tests/engine/random_operations.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    zv::engine::test::RandomOperations::performInput({data, size});
    return 0;
}
