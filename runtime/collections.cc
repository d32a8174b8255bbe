// The exported primitives of collections, which code each element by a routine.

#include "collections.h"

using namespace quorva;

int XdrVector(Xdr* xdrs, void* first, std::uint32_t count, std::uint32_t size, XdrRoutine element)
{
    return codeVector(xdrs, first, count, size, [=](void* at) { return element(xdrs, at) != 0; });
}

int XdrArray(Xdr* xdrs, void* block, std::uint16_t* count, std::uint32_t maximum, std::uint32_t size,
             XdrRoutine element)
{
    return codeArray(xdrs, block, count, maximum, size, [=](void* at) { return element(xdrs, at) != 0; });
}

int XdrPointer(Xdr* xdrs, void* pointer, std::uint32_t size, XdrRoutine value)
{
    return codeOptional(xdrs, pointer, size, [=](void* at) { return value(xdrs, at) != 0; });
}
