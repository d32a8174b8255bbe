// Any bytes, decoded as any type and encoded again: what was accepted comes back for good, also into too little room,
// and the inspector's reading of the message and of the object agrees. The variant says how many bytes are missing.

#include "mutate.h"

using namespace quorva::fuzz;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    return judge([&] {
        const Input input = Input::of({data, size});
        Subject subject(*input.type);
        subject.agreesWithInspector(input.contents);
        if (subject.comesBack(input.contents) && input.contents.size() > input.variant)
            subject.encodeInto(input.contents.size() - input.variant, input.contents);
    });
}

extern "C" std::size_t LLVMFuzzerCustomMutator(std::uint8_t* data, std::size_t size, std::size_t most, unsigned seed)
{
    return mutateMessage(data, size, most, seed);
}
