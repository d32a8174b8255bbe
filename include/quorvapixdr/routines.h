// The built-in types and the routines that code them, for C++ and C. Every generated routine is made of these.
//
// Every coding routine has the type `XdrRoutine`: it takes the stream and the address of the object and returns 1 for
// success, 0 for failure. The stream's mode decides whether it encodes, decodes or releases. A routine that is given a
// null object allocates one (zeroed, with the scalar `operator new`) and leaves its address in the stream's
// `rootAllocationSlot`; the owner of the stream owns that object. Nothing here throws: an allocation that fails is a
// failed pass. A failed pass releases nothing; a release pass over the same object does.
#pragma once

#include <stdint.h>

#ifdef __cplusplus
class Xdr;
#else
typedef struct Xdr Xdr;  // the stream, a class of C++
#endif

typedef unsigned char Boolean;  // not bool: a decoded byte may hold 2, which a bool may not
typedef int8_t ShortInteger;
typedef uint8_t ShortNatural;
typedef int16_t Integer;
typedef uint16_t Natural;
typedef int32_t LongInteger;
typedef uint32_t LongNatural;
typedef uint32_t UINT;
typedef float Float;

typedef int (*XdrRoutine)(Xdr*, void*);

#define QUORVA_EXPORT __attribute__((visibility("default")))

#ifdef __cplusplus
extern "C" {
#endif

// Scalars: `value` points to one value of the named type, aligned for it. It takes one unit of four bytes on the wire;
// the trace shows it as text. When the stream refuses the unit, the result is 0, the value is unchanged, and the trace
// still shows it. In release mode these routines return 1 and touch nothing.
QUORVA_EXPORT int XdrLongInteger(Xdr* xdrs, void* value);
QUORVA_EXPORT int XdrLongNatural(Xdr* xdrs, void* value);
QUORVA_EXPORT int XdrUINT(Xdr* xdrs, void* value);          // 32 bits unsigned, traced as if signed
QUORVA_EXPORT int XdrInteger(Xdr* xdrs, void* value);       // 16 bits, sign-extended; decoding keeps the low 16
QUORVA_EXPORT int XdrNatural(Xdr* xdrs, void* value);       // 16 bits, zero-extended; decoding keeps the low 16
QUORVA_EXPORT int XdrShortInteger(Xdr* xdrs, void* value);  // 8 bits, zero-extended: -1 is sent and shown as 255
QUORVA_EXPORT int XdrShortNatural(Xdr* xdrs, void* value);  // 8 bits, zero-extended
QUORVA_EXPORT int XdrBoolean(Xdr* xdrs, void* value);       // the low byte; any that is not 0 shows as "true"
QUORVA_EXPORT int XdrFloat(Xdr* xdrs, void* value);         // IEEE 754 single
QUORVA_EXPORT int XdrEnum(Xdr* xdrs, void* value);          // 32 bits; the enumeration's routine adds the text
QUORVA_EXPORT int XdrLongNatural2(Xdr* xdrs, void* value);  // 32 bits unsigned without any trace: lengths and counts
QUORVA_EXPORT int XdrVoid(Xdr* xdrs, void* value);          // nothing on the wire; 1
QUORVA_EXPORT int XdrLongFloat(Xdr* xdrs, void* value);     // the API has no 8-byte float: 0 in every mode

// Fixed-length opaque data: the low 16 bits of `length` say how many bytes at `bytes` are moved unchanged, followed by
// zero bytes up to a whole unit; decoding ignores the padding. `XdrOpaque` shows the bytes as text up to the first zero
// byte, at most 4096 characters; `XdrOpaque2` shows a hex dump.
QUORVA_EXPORT int XdrOpaque(Xdr* xdrs, unsigned char* bytes, uint32_t length);
QUORVA_EXPORT int XdrOpaque2(Xdr* xdrs, unsigned char* bytes, uint32_t length);

// A zero-terminated string of at most `maximum` bytes at `*string`. Decoding allocates it with the array `operator
// new`, before the length is compared with `maximum`; release deletes it and leaves the pointer. Encoding refuses a
// null.
QUORVA_EXPORT int XdrString(Xdr* xdrs, char** string, uint32_t maximum);

// The same for a string passed by value, at most 65535 bytes: encodes and releases it, but a decoded string is lost.
QUORVA_EXPORT int XdrWrapString(Xdr* xdrs, void* string);

// Variable-length opaque data: `*count` bytes at `*bytes`, at most `maximum`. A decoded count is stored, cut to 16
// bits, before it is compared with `maximum`; a count of 0 allocates nothing and leaves `*bytes`.
QUORVA_EXPORT int XdrBytes(Xdr* xdrs, unsigned char** bytes, uint16_t* count, uint32_t maximum);

// A fixed-length array: `count` elements of `size` bytes, one after the other from `first`; more than 65535 are
// refused.
QUORVA_EXPORT int XdrVector(Xdr* xdrs, void* first, uint32_t count, uint32_t size, XdrRoutine element);

// A variable-length array: `*count` elements of `size` bytes in an allocated block, at most `maximum`. `block` is the
// address of the pointer to the block (a `T**`). A decoded count is stored, cut to 16 bits, before it is compared with
// `maximum`; the block is allocated with the array `operator new` and not cleared, but after a failure every element
// that was not reached is all zeros.
QUORVA_EXPORT int XdrArray(Xdr* xdrs, void* block, uint16_t* count, uint32_t maximum, uint32_t size,
                           XdrRoutine element);

// Optional data of `size` bytes. `pointer` is the address of the pointer to it (a `T**`), null when absent. Decoding
// allocates it, zeroed. Only a presence unit whose low byte is 1 means present.
QUORVA_EXPORT int XdrPointer(Xdr* xdrs, void* pointer, uint32_t size, XdrRoutine value);

#ifdef __cplusplus
}  // extern "C"
#endif
