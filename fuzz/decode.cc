// Any bytes, decoded as any type: the interpreter and the plain functions agree, and no block stays allocated. Variants
// from 128 on make allocations fail, from number variant - 128 on.

#include "mutate.h"

using namespace quorva::fuzz;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    return runDriver([&] {
        const Input input = Input::of({data, size});
        const bool scarce = input.variant >= 128;
        Subject(*input.type).decodeBothWays(input.contents, scarce ? input.variant - 128 : quorva::test::Watch::never);
    });
}

extern "C" std::size_t LLVMFuzzerCustomMutator(std::uint8_t* data, std::size_t size, std::size_t most, unsigned seed)
{
    return mutateMessage(data, size, most, seed);
}
