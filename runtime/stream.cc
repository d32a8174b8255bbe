// Allocation of the object of a routine that was given none.

#include <quorvaruntime/stream.h>

#include <cstring>
#include <new>

namespace quorva {

void* newRoot(Xdr* xdrs, std::size_t size)
{
    void* const storage = ::operator new(size, std::nothrow);
    if (!storage) return nullptr;
    xdrs->rootAllocationSlot = std::memset(storage, 0, size);
    return storage;
}

}  // namespace quorva
