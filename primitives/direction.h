// The direction of a pass, which only the primitives look at.
#pragma once

#include <Xdr.h>

namespace quorva {

enum class Direction { encode = 0, decode = 1, release = 2 };

// The mode is compared as a number: a platform's class may name its enumerators as it likes.
inline Direction directionOf(const Xdr* xdrs)
{
    return static_cast<Direction>(xdrs->streamMode);
}

}  // namespace quorva
