// The codec for C11: buffers of any length, the trace of a pass, and why a pass fails. <quorvapixdr/drivers.h> serves
// C, too. Functions that take a length and a place for a text or a number accept a null place.
#pragma once

#include <quorvapixdr/routines.h>

#include <stddef.h>

#ifdef __cplusplus
extern "C" {
#elif !defined __STDC_VERSION__ || __STDC_VERSION__ < 201112L
#error "The headers of quorvapixdr need C11: compile with -std=c11 or later."
#endif

// The first number on a machine with addresses of 32 bits, the second on one with 64.
#define QUORVA_BYTES(with32, with64) (sizeof(void*) == 4 ? (with32) : (with64))

// The description of a type. Generated headers declare a function that returns it: quorva_T() for the type T.
typedef struct QuorvaType QuorvaType;

// Encodes `object` into the first 65535 of the `size` bytes at `buffer`. Returns 1 for success, 0 for failure.
// `*length` receives the number of bytes written, also by a failed pass.
//
// `*trace` receives the trace, a text that the caller frees with free(); null if memory is short or the stream class of
// the library collects no trace. A failed pass leaves elements open. Without a `trace` none is collected.
QUORVA_EXPORT int quorvaEncode(XdrRoutine routine, const void* object, unsigned char* buffer, size_t size,
                               size_t* length, char** trace);

// Decodes the `size` bytes at `message` into `object`, which owns what is allocated until a release pass: call
// XdrDeallocate(routine, object, NULL) (<quorvapixdr/drivers.h>). Zero the object first: a release pass is then safe
// wherever the decode stopped. Returns 1 for success, 0 for failure; a message of more than 65535 bytes is a failure.
// Bytes after the value are not: `*length` receives the number of bytes read. `trace` is that of an encode.
QUORVA_EXPORT int quorvaDecode(XdrRoutine routine, void* object, const unsigned char* message, size_t size,
                               size_t* length, char** trace);

// Where and why a pass stops. Texts are zero-terminated; one that is too long ends in "...".
typedef struct QuorvaFailure {
    size_t offset;     // of the first byte of the refused unit or contents, from the start of the message
    char path[256];    // JSON Pointer (RFC 6901) into the JSON form of the value: "/aValues/2/value/jobName"
    char reason[256];  // "count 7 is beyond the maximum 6"
} QuorvaFailure;

// Find why an encode of the object into `size` bytes, or a decode of the message, fails. Returns 1 and fills `*failure`
// if it does, 0 if it succeeds. The object must be one that a pass could encode: what its pointers point to is read.
// There are two differences from a pass: memory is never short, and values that nest deeper than 512 levels are
// refused.
QUORVA_EXPORT int quorvaExplainEncode(const QuorvaType* type, const void* object, size_t size, QuorvaFailure* failure);
QUORVA_EXPORT int quorvaExplainDecode(const QuorvaType* type, const unsigned char* message, size_t size,
                                      QuorvaFailure* failure);

#ifdef __cplusplus
}  // extern "C"
#endif
