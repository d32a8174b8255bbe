// The other implementation of XDR: routines that rpcgen generated from the same interface files, run by libtirpc.
#pragma once

#ifdef __cplusplus
extern "C" {
#endif

enum PeerFailure { peerRefusesToDecode = -1, peerRefusesToEncode = -2 };

// Decodes `length` bytes as the type, encodes the value into a buffer of `room` bytes, and releases it. Returns the
// number of bytes written or a PeerFailure; sets `consumed` to the number of bytes read. `index` is that of peerTypes.
int peerRecode(unsigned index, const unsigned char* message, unsigned length, unsigned char* out, unsigned room,
               unsigned* consumed);

// The names of the types in the interface files; the last is null.
extern const char* const peerTypes[];

#ifdef __cplusplus
}
#endif
