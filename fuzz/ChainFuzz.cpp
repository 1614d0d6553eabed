// Chains of effects over one frame: the bytes of one effect after the other, within the frame.
#include "tests/kernels/ChainRecipe.h"

#include <cstdlib>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    vixa::kernels::test::ChainOfRecipe chain({data, size});
    std::vector<std::uint8_t> together(chain.Size()); // of its exact size: the sanitizer sees a byte too far
    chain.Together(together);
    if (together != chain.OneByOne())
        std::abort();
    return 0;
}
