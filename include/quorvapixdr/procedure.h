// Remote procedures (RFC 5531) as C++ values: which program, version and number a call names, and the coders of the one
// value that it carries in each direction. The generated headers define one for each procedure of a `program` block:
//
//     quorva::procedure::PRINT_SPOOLER::FIRST::CREATE_JOB.number
//
// The codec sends and receives nothing. examples/rpc shows a client and a server that are written with these values.
#pragma once

#include <quorvapixdr/primitives.h>

#include <cstdint>

namespace quorva {

// The argument or the result of a procedure that has none. It takes no bytes.
struct Void {};

// Outside of the namespace of the coders, where that of a type named Coder hides the template.
inline constexpr Coder<Void> voidCoder = {[](Xdr*, void*) { return 1; }, "void"};

template <>
inline constexpr Coder<Void> coderOf<Void> = voidCoder;

template <class Argument, class Result>
struct Procedure {
    const char* name;
    std::uint32_t program;
    std::uint32_t version;
    std::uint32_t number;
    Coder<Argument> argument;
    Coder<Result> result;
};

}  // namespace quorva
