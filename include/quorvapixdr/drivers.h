// The five ways into the library for callers who bring a buffer of 1024 bytes.
//
// Each pass makes a stream of its own, so passes over distinct objects need nothing from each other. Callers who want
// a real buffer length, errors with a place and automatic release use <quorvapixdr/codec.h>.
#pragma once

#include <quorvapixdr/primitives.h>

extern "C" {

// Encodes `object` into `buffer` (1024 bytes, the caller's). Returns the bytes written, also when the pass failed on
// the way; it does not tell which.
QUORVA_EXPORT unsigned short ClientsXdrSupport(XdrRoutine routine, void* object, unsigned char* buffer);

// Decodes `buffer` (1024 bytes) into `object`. What it allocates belongs to the object until `XdrDeallocate`. Zero the
// object first: then a release pass is safe however far the decode came. `object` must not be null, because the object
// that the routine would allocate cannot be reached afterwards.
QUORVA_EXPORT void ClientsXdrDeserialize(XdrRoutine routine, void* object, unsigned char* buffer);

// The same, and tells how it went: 1 or 0. Its stream is never destroyed; for test benches only.
QUORVA_EXPORT int TestDeserialize(XdrRoutine routine, void* object, unsigned char* buffer);

// Releases everything that a decode allocated inside `object`, not the object itself, and leaves its pointers as they
// were. `buffer` is not touched.
QUORVA_EXPORT void XdrDeallocate(XdrRoutine routine, void* object, unsigned char* buffer);

// Releases one decoded text, `*string`, and leaves the pointer.
QUORVA_EXPORT void DeallocateString(char** string);

}  // extern "C"
