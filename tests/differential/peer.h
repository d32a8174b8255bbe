// The other implementation: routines that rpcgen made from the same interface files, run by libtirpc.
#pragma once

#ifdef __cplusplus
extern "C" {
#endif

enum PeerFailure { peerRefusesToDecode = -1, peerRefusesToEncode = -2 };

// Decodes `length` bytes as the type, encodes what came out into `room` bytes, and releases it. Returns the bytes
// written or a PeerFailure; `consumed` is the bytes read. `index` is the type's place in peerTypes.
int peerRecode(unsigned index, const unsigned char* message, unsigned length, unsigned char* out, unsigned room,
               unsigned* consumed);

// The types' names in the interface files; the last is null.
extern const char* const peerTypes[];

#ifdef __cplusplus
}
#endif
