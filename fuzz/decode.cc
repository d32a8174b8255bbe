// Any bytes, decoded as any type: both ways through the code do the same, and nothing is left. The variant says which
// allocations fail, if any.

#include "mutate.h"

using namespace quorva::fuzz;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    return judge([&] {
        const Input input = Input::of({data, size});
        const bool scarce = input.variant >= 128;
        Subject(*input.type).decodeBothWays(input.contents, scarce ? input.variant - 128 : quorva::test::Watch::never);
    });
}

extern "C" std::size_t LLVMFuzzerCustomMutator(std::uint8_t* data, std::size_t size, std::size_t most, unsigned seed)
{
    return mutateMessage(data, size, most, seed);
}
