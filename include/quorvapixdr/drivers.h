// The five drivers: entry points for callers with a buffer of 1024 bytes.
//
// Each call makes its own stream, so passes over distinct objects share nothing. <quorvapixdr/codec.h> has real buffer
// lengths, errors that say where a pass failed, and automatic release; C has <quorvapixdr/c_codec.h>.
#pragma once

#include <quorvapixdr/routines.h>

#ifdef __cplusplus
extern "C" {
#endif

// Encodes `object` into `buffer` (1024 bytes, owned by the caller). Returns the number of bytes written, also when the
// pass failed; the result does not tell a failure from a success. Returns 0 without memory for a stream.
QUORVA_EXPORT unsigned short ClientsXdrSupport(XdrRoutine routine, void* object, unsigned char* buffer);

// Decodes `buffer` (1024 bytes) into `object`, which owns what is allocated until `XdrDeallocate`. Zero the object
// first: a release pass is then safe wherever the decode stopped. `object` must not be null, because the caller could
// not reach the object that the routine would allocate. Does not tell a failure from a success.
QUORVA_EXPORT void ClientsXdrDeserialize(XdrRoutine routine, void* object, unsigned char* buffer);

// The same, but returns 1 for success and 0 for failure. Its stream is never destroyed: for test benches only.
QUORVA_EXPORT int TestDeserialize(XdrRoutine routine, void* object, unsigned char* buffer);

// Releases everything that a decode allocated inside `object`, but not the object itself, and leaves its pointers as
// they were. `buffer` is not touched. Without memory for a stream nothing is released.
QUORVA_EXPORT void XdrDeallocate(XdrRoutine routine, void* object, unsigned char* buffer);

// Releases one decoded string, `*string`, and leaves the pointer.
QUORVA_EXPORT void DeallocateString(char** string);

#ifdef __cplusplus
}  // extern "C"
#endif
