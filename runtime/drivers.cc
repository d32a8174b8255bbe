// The five drivers: each makes a stream and runs one routine over one object.

#include "contract.h"

#include <quorvapixdr/drivers.h>
#include <quorvapixdr/primitives.h>

#include <memory>
#include <new>

using quorva::Mode;

namespace {

constexpr unsigned short bufferLength = 1024;  // of every caller's buffer; part of the interface

// Makes a stream for one pass; null when memory is short. Lets through what the constructor of the class throws.
std::unique_ptr<Xdr> programmed(Mode mode, unsigned char* buffer)
{
    std::unique_ptr<Xdr> xdrs(new (std::nothrow) Xdr);
    if (xdrs) xdrs->Program(static_cast<Xdr::Request>(mode), buffer, bufferLength);
    return xdrs;
}

}  // namespace

unsigned short ClientsXdrSupport(XdrRoutine routine, void* object, unsigned char* buffer)
{
    const auto xdrs = programmed(Mode::encode, buffer);
    if (!xdrs) return 0;
    routine(xdrs.get(), object);
    return xdrs->codedLength;
}

void ClientsXdrDeserialize(XdrRoutine routine, void* object, unsigned char* buffer)
{
    if (const auto xdrs = programmed(Mode::decode, buffer)) routine(xdrs.get(), object);
}

int TestDeserialize(XdrRoutine routine, void* object, unsigned char* buffer)
{
    // Never destroyed, by contract: the slot of the stream keeps the address of an object allocated for a null one.
    Xdr* const xdrs = programmed(Mode::decode, buffer).release();
    return xdrs ? routine(xdrs, object) : 0;
}

void XdrDeallocate(XdrRoutine routine, void* object, unsigned char* buffer)
{
    if (const auto xdrs = programmed(Mode::release, buffer)) routine(xdrs.get(), object);
}

void DeallocateString(char** string)
{
    // The scalar form without a size is part of the interface: allocators of callers depend on it.
    ::operator delete(*string);
}
