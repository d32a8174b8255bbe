// The built-in types and the routines that code them. Every generated routine is made of these.
//
// Every coding routine has the type `XdrRoutine`: it takes the stream and the address of the object and returns 1 for
// success, 0 for failure. The stream's mode decides whether it encodes, decodes or releases. A routine that is given a
// null object allocates one (zeroed, with the scalar `operator new`) and leaves its address in the stream's
// `rootAllocationSlot`; the owner of the stream owns that object. Nothing here throws: an allocation that fails is a
// failed pass. A failed pass releases nothing; a release pass over the same object does.
#pragma once

#include <cstddef>
#include <cstdint>

class Xdr;

using Boolean = unsigned char;  // not bool: a decoded byte may hold 2, which a C++ bool may not
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
QUORVA_EXPORT int XdrOpaque(Xdr* xdrs, unsigned char* bytes, std::uint32_t length);
QUORVA_EXPORT int XdrOpaque2(Xdr* xdrs, unsigned char* bytes, std::uint32_t length);

// A zero-terminated string of at most `maximum` bytes at `*string`. Decoding allocates it with the array `operator
// new`, before the length is compared with `maximum`; release deletes it and leaves the pointer. Encoding refuses a
// null.
QUORVA_EXPORT int XdrString(Xdr* xdrs, char** string, std::uint32_t maximum);

// The same for a string passed by value, at most 65535 bytes: encodes and releases it, but a decoded string is lost.
QUORVA_EXPORT int XdrWrapString(Xdr* xdrs, void* string);

// Variable-length opaque data: `*count` bytes at `*bytes`, at most `maximum`. A decoded count is stored, cut to 16
// bits, before it is compared with `maximum`; a count of 0 allocates nothing and leaves `*bytes`.
QUORVA_EXPORT int XdrBytes(Xdr* xdrs, unsigned char** bytes, std::uint16_t* count, std::uint32_t maximum);

// A fixed-length array: `count` elements of `size` bytes, one after the other from `first`; more than 65535 are
// refused.
QUORVA_EXPORT int XdrVector(Xdr* xdrs, void* first, std::uint32_t count, std::uint32_t size, XdrRoutine element);

// A variable-length array: `*count` elements of `size` bytes in an allocated block, at most `maximum`. `block` is the
// address of the pointer to the block (a `T**`). A decoded count is stored, cut to 16 bits, before it is compared with
// `maximum`; the block is allocated with the array `operator new` and not cleared, but after a failure every element
// that was not reached is all zeros.
QUORVA_EXPORT int XdrArray(Xdr* xdrs, void* block, std::uint16_t* count, std::uint32_t maximum, std::uint32_t size,
                           XdrRoutine element);

// Optional data of `size` bytes. `pointer` is the address of the pointer to it (a `T**`), null when absent. Decoding
// allocates it, zeroed. Only a presence unit whose low byte is 1 means present.
QUORVA_EXPORT int XdrPointer(Xdr* xdrs, void* pointer, std::uint32_t size, XdrRoutine value);

}  // extern "C"

namespace quorva {

// What a pass does with an object: encode (memory to wire), decode (wire to memory), or release what a decode
// allocated. The numbers are those of the stream's mode.
enum class Mode : std::int32_t { encode = 0, decode = 1, release = 2 };

// The bytes that `length` bytes take on the wire: `length` rounded up to whole units.
constexpr std::size_t padded(std::size_t length)
{
    return (length + 3) & ~std::size_t{3};
}

// A variable-length array as a member of a struct or union: at most 65535 elements. A decode allocates them with the
// array `operator new`; the enclosing object owns them until a release pass.
template <class T>
struct Counted {
    std::uint16_t count;
    T* elements;
};

// The first number on a machine with addresses of 32 bits, the second on one with 64. Generated headers give with it
// the layouts that hold addresses.
constexpr std::size_t on32Or64Bits(std::size_t with32, std::size_t with64)
{
    return sizeof(void*) == 4 ? with32 : with64;
}

struct Type;

// The routine that codes a type, the type's name, and the function that returns its description (see
// <quorvapixdr/description.h>). `T` is the C++ type; several interface types may share it.
template <class T>
struct Coder {
    XdrRoutine routine;
    const char* name;
    const Type& (*description)() = nullptr;  // null in a coder that a caller makes of a routine without a description
};

namespace detail {

template <class T>
consteval Coder<T> onlyCoderOf()
{
    static_assert(sizeof(T) == 0,
                  "no coder belongs to this C++ type alone: name the interface type, for example "
                  "quorva::encode(x, quorva::coder::HostName) or quorva::decode(bytes, quorva::coder::HostName)");
    return {};
}

}  // namespace detail

// The coder of a C++ type that exactly one interface type has: an enumeration, struct, union or sequence. The generated
// headers specialise it; for any other type it does not compile.
template <class T>
inline constexpr Coder<T> coderOf = detail::onlyCoderOf<T>();

// The description of each type. Generated headers declare those of the interface's types.
namespace description {
QUORVA_EXPORT const Type& Boolean();
QUORVA_EXPORT const Type& ShortInteger();
QUORVA_EXPORT const Type& ShortNatural();
QUORVA_EXPORT const Type& Integer();
QUORVA_EXPORT const Type& Natural();
QUORVA_EXPORT const Type& LongInteger();
QUORVA_EXPORT const Type& LongNatural();
QUORVA_EXPORT const Type& UINT();
QUORVA_EXPORT const Type& Float();
}  // namespace description

namespace coder {
inline constexpr Coder<::Boolean> Boolean = {XdrBoolean, "Boolean", description::Boolean};
inline constexpr Coder<::ShortInteger> ShortInteger = {XdrShortInteger, "ShortInteger", description::ShortInteger};
inline constexpr Coder<::ShortNatural> ShortNatural = {XdrShortNatural, "ShortNatural", description::ShortNatural};
inline constexpr Coder<::Integer> Integer = {XdrInteger, "Integer", description::Integer};
inline constexpr Coder<::Natural> Natural = {XdrNatural, "Natural", description::Natural};
inline constexpr Coder<::LongInteger> LongInteger = {XdrLongInteger, "LongInteger", description::LongInteger};
inline constexpr Coder<::LongNatural> LongNatural = {XdrLongNatural, "LongNatural", description::LongNatural};
inline constexpr Coder<::UINT> UINT = {XdrUINT, "UINT", description::UINT};
inline constexpr Coder<::Float> Float = {XdrFloat, "Float", description::Float};
}  // namespace coder

}  // namespace quorva
