// The library's passes as a caller makes them who holds the routine: a stream on the stack, one call.
#pragma once

#include "messages.h"

#include <Xdr.h>

#include <cstddef>

namespace quorva::bench {

// Bytes written to `buffer`, which has room for `longest`; 0 after a failure. The trace goes to `sink`, if any, which
// is cleared first.
inline std::size_t encodePass(XdrRoutine routine, void* object, unsigned char* buffer, TraceText* sink)
{
    Xdr xdrs;
    if (sink) {
        sink->clear();
        xdrs.setTrace(sink);
    }
    xdrs.Program(Xdr::encode, buffer, longest);
    return routine(&xdrs, object) ? xdrs.codedLength : 0;
}

template <class T>
std::size_t encodePass(XdrRoutine routine, T& object, unsigned char* buffer, TraceText* sink = nullptr)
{
    return encodePass(routine, static_cast<void*>(&object), buffer, sink);
}

// Decodes and frees. Bytes read; 0 after a failure.
template <class T>
std::size_t decodePass(XdrRoutine routine, unsigned char* message, std::size_t length, TraceText* sink = nullptr)
{
    T value = {};
    Xdr xdrs;
    if (sink) {
        sink->clear();
        xdrs.setTrace(sink);
    }
    xdrs.Program(Xdr::decode, message, static_cast<unsigned short>(length));
    const std::size_t consumed = routine(&xdrs, &value) ? xdrs.codedLength : 0;
    Xdr freeing;
    freeing.Program(Xdr::release, nullptr, 0);
    routine(&freeing, &value);
    return consumed;
}

}  // namespace quorva::bench
