// What C++ adds to the built-in types and their routines: the coders that belong to C++ types.
#pragma once

#include <quorvapixdr/routines.h>

#include <cstddef>
#include <cstdint>

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
