// Passes of libtirpc over the same messages, with routines that rpcgen generates from the same interface files.
#pragma once

#include <rpc/rpc.h>

#include <cstddef>

namespace quorva::bench {

template <class P>
using TirpcRoutine = bool_t (*)(XDR*, P*);

// Returns the number of bytes written; 0 after an error.
template <class P>
std::size_t tirpcEncode(TirpcRoutine<P> routine, P& object, unsigned char* buffer, std::size_t available)
{
    XDR xdrs;
    xdrmem_create(&xdrs, reinterpret_cast<char*>(buffer), static_cast<u_int>(available), XDR_ENCODE);
    return routine(&xdrs, &object) ? xdr_getpos(&xdrs) : 0;
}

// Decodes into `object`, which is zeroed. Returns the number of bytes read; 0 after an error.
template <class P>
std::size_t tirpcDecode(TirpcRoutine<P> routine, P& object, unsigned char* message, std::size_t length)
{
    XDR xdrs;
    xdrmem_create(&xdrs, reinterpret_cast<char*>(message), static_cast<u_int>(length), XDR_DECODE);
    return routine(&xdrs, &object) ? xdr_getpos(&xdrs) : 0;
}

// Decodes into a new object and releases it. Returns the number of bytes read; 0 after an error.
template <class P>
std::size_t tirpcDecode(TirpcRoutine<P> routine, unsigned char* message, std::size_t length)
{
    P object = {};
    const std::size_t consumed = tirpcDecode(routine, object, message, length);
    xdr_free(reinterpret_cast<xdrproc_t>(routine), &object);
    return consumed;
}

}  // namespace quorva::bench
