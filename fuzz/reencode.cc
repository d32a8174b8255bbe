// Any bytes, decoded as any type and encoded again: accepted messages survive the round trip, and the inspector's
// reader agrees. The variant is the number of bytes by which the buffer of a further encode pass is too short.

#include "mutate.h"

using namespace quorva::fuzz;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    return runDriver([&] {
        const Input input = Input::of({data, size});
        Subject subject(*input.type);
        subject.agreesWithInspector(input.contents);
        if (subject.roundTrips(input.contents) && input.contents.size() > input.variant)
            subject.encodeInto(input.contents.size() - input.variant, input.contents);
    });
}

extern "C" std::size_t LLVMFuzzerCustomMutator(std::uint8_t* data, std::size_t size, std::size_t most, unsigned seed)
{
    return mutateMessage(data, size, most, seed);
}
