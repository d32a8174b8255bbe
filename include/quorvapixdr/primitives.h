// The built-in types and the routines that code them: the words in which every generated routine ends.
//
// Every coding routine has the type `XdrRoutine`: it takes the stream and the address of the object and returns 1 for
// success, 0 for failure. Which way it works - encode, decode, release - is the stream's mode. A routine that is given
// a null object allocates one (zeroed, with the scalar `operator new`) and leaves its address in the stream's
// `rootAllocationSlot`; whoever owns the stream owns that object. Nothing here throws: an allocation that fails is a
// failed pass. Failed passes release nothing; a pass in release mode over the same object does.
#pragma once

#include <cstdint>

class Xdr;

using Boolean = unsigned char;  // one byte, because a decoded one may hold 2, which a C++ bool may not
using ShortInteger = std::int8_t;
using ShortNatural = std::uint8_t;
using Integer = std::int16_t;
using Natural = std::uint16_t;
using LongInteger = std::int32_t;
using LongNatural = std::uint32_t;
using UINT = std::uint32_t;
using Float = float;

using XdrRoutine = int (*)(Xdr*, void*);

#define QUORVA_EXPORT __attribute__((visibility("default")))

extern "C" {

// Scalars: `value` points to one value of the named type, aligned for it. One unit of four bytes on the wire, the
// value's text in the trace. When the stream refuses the unit the result is 0, and the text of the value as it stands
// is still added. In release mode they return 1 and touch nothing.
QUORVA_EXPORT int XdrLongInteger(Xdr* xdrs, void* value);
QUORVA_EXPORT int XdrLongNatural(Xdr* xdrs, void* value);
QUORVA_EXPORT int XdrUINT(Xdr* xdrs, void* value);          // 32 bits unsigned, traced as if signed
QUORVA_EXPORT int XdrInteger(Xdr* xdrs, void* value);       // 16 bits, sign-extended; decoding keeps the low 16
QUORVA_EXPORT int XdrNatural(Xdr* xdrs, void* value);       // 16 bits, zero-extended; decoding keeps the low 16
QUORVA_EXPORT int XdrShortInteger(Xdr* xdrs, void* value);  // 8 bits, zero-extended: -1 travels and shows as 255
QUORVA_EXPORT int XdrShortNatural(Xdr* xdrs, void* value);  // 8 bits, zero-extended
QUORVA_EXPORT int XdrBoolean(Xdr* xdrs, void* value);       // the low byte; any that is not 0 shows as "true"
QUORVA_EXPORT int XdrFloat(Xdr* xdrs, void* value);         // IEEE 754 single
QUORVA_EXPORT int XdrEnum(Xdr* xdrs, void* value);          // 32 bits, no text: the enumeration's routine adds it
QUORVA_EXPORT int XdrLongNatural2(Xdr* xdrs, void* value);  // 32 bits unsigned without any trace: lengths and counts
QUORVA_EXPORT int XdrVoid(Xdr* xdrs, void* value);          // nothing on the wire; 1
QUORVA_EXPORT int XdrLongFloat(Xdr* xdrs, void* value);     // the API has no 8-byte float: 0 in every mode

// `length` bytes as they are (cut to 16 bits), then zero bytes up to a whole unit; decoding never looks at the padding.
// `XdrOpaque` shows them as text up to the first zero byte, at most 4096 characters; `XdrOpaque2` as a hex dump.
QUORVA_EXPORT int XdrOpaque(Xdr* xdrs, unsigned char* bytes, std::uint32_t length);
QUORVA_EXPORT int XdrOpaque2(Xdr* xdrs, unsigned char* bytes, std::uint32_t length);

// A zero-terminated text of at most `maximum` characters held by `*string`. Decoding allocates it with the array
// `operator new` before the length is judged; release deletes it and leaves the pointer. Encoding refuses a null.
QUORVA_EXPORT int XdrString(Xdr* xdrs, char** string, std::uint32_t maximum);

// The same for a text passed by value, at most 65535 characters: encodes and releases it, but a decoded text is lost.
QUORVA_EXPORT int XdrWrapString(Xdr* xdrs, void* string);

// `*count` bytes held by `*bytes`, at most `maximum`. A decoded count is stored, cut to 16 bits, before it is judged;
// a count of 0 allocates nothing and leaves `*bytes`.
QUORVA_EXPORT int XdrBytes(Xdr* xdrs, unsigned char** bytes, std::uint16_t* count, std::uint32_t maximum);

// `count` elements of `size` bytes that stand one after the other at `first`; more than 65535 are refused.
QUORVA_EXPORT int XdrVector(Xdr* xdrs, void* first, std::uint32_t count, std::uint32_t size, XdrRoutine element);

// `*count` elements of `size` bytes in a block of their own, at most `maximum`. `block` is the address of the pointer
// to the block (a `T**`). A decoded count is stored, cut to 16 bits, before it is judged; the block is allocated with
// the array `operator new` and not cleared, but after a failure every element that was not reached is empty (all
// zeros).
QUORVA_EXPORT int XdrArray(Xdr* xdrs, void* block, std::uint16_t* count, std::uint32_t maximum, std::uint32_t size,
                           XdrRoutine element);

// A value of `size` bytes that may be absent. `pointer` is the address of the pointer to it (a `T**`), null when
// absent. Only a presence unit whose low byte is 1 means present.
QUORVA_EXPORT int XdrPointer(Xdr* xdrs, void* pointer, std::uint32_t size, XdrRoutine value);

}  // extern "C"

namespace quorva {

// What a pass does with an object: memory to wire, wire to memory, or release of what a decode allocated. The numbers
// are those of the stream's mode.
enum class Mode : std::int32_t { encode = 0, decode = 1, release = 2 };

// A counted block as records and unions hold it in place: at most 65535 elements, allocated with the array
// `operator new` when decoded, owned by the object that holds it until a release pass.
template <class T>
struct Counted {
    std::uint16_t count;
    T* elements;
};

// Ties a C++ type to the routine that codes it. `T` is the type in memory; several routines may share one (aliases).
template <class T>
struct Coder {
    XdrRoutine routine;
    const char* name;
};

// The coder of a type that has just one: every enumeration, record, union and sequence. Specialised beside each.
template <class T>
inline constexpr Coder<T> coderOf = {nullptr, nullptr};

namespace coder {
inline constexpr Coder<::Boolean> Boolean = {XdrBoolean, "Boolean"};
inline constexpr Coder<::ShortInteger> ShortInteger = {XdrShortInteger, "ShortInteger"};
inline constexpr Coder<::ShortNatural> ShortNatural = {XdrShortNatural, "ShortNatural"};
inline constexpr Coder<::Integer> Integer = {XdrInteger, "Integer"};
inline constexpr Coder<::Natural> Natural = {XdrNatural, "Natural"};
inline constexpr Coder<::LongInteger> LongInteger = {XdrLongInteger, "LongInteger"};
inline constexpr Coder<::LongNatural> LongNatural = {XdrLongNatural, "LongNatural"};
inline constexpr Coder<::UINT> UINT = {XdrUINT, "UINT"};
inline constexpr Coder<::Float> Float = {XdrFloat, "Float"};
}  // namespace coder

}  // namespace quorva
