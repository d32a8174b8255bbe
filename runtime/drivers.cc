// The five entry points: each makes a stream, runs one routine over one object and, but for one, tears the stream down.

#include "contract.h"

#include <quorvapixdr/drivers.h>

#include <memory>
#include <new>

using quorva::Mode;

namespace {

constexpr unsigned short bufferLength = 1024;  // of every caller's buffer; part of the interface

// A stream programmed for one pass, or null when there is no memory for it. What its constructor throws passes on.
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
    // The stream is given up on purpose: with it a null object's storage stays where its slot points.
    Xdr* const xdrs = programmed(Mode::decode, buffer).release();
    return xdrs ? routine(xdrs, object) : 0;
}

void XdrDeallocate(XdrRoutine routine, void* object, unsigned char* buffer)
{
    if (const auto xdrs = programmed(Mode::release, buffer)) routine(xdrs.get(), object);
}

void DeallocateString(char** string)
{
    // The scalar form without a size, as this entry point has always done: callers' own allocators count on it.
    ::operator delete(*string);
}
