// Objects in memory by their descriptions: members, numbers, arms and enumerators.
//
// An address is that of a whole object of the type in question. Nothing here checks it.
#pragma once

#include <quorvapixdr/codec.h>
#include <quorvapixdr/description.h>

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <span>
#include <string>
#include <vector>

namespace quorva::inspect {

// Values that nest deeper are refused. Only a message or JSON text made to exhaust the stack has them.
inline constexpr std::size_t deepestNesting = 512;

// The value of type `T` at any address, aligned or not.
template <class T>
T load(const void* at)
{
    T value;
    std::memcpy(&value, at, sizeof value);
    return value;
}

// Writes the value to any address, aligned or not.
template <class T>
void store(void* at, T value)
{
    std::memcpy(at, &value, sizeof value);
}

// The address `bytes` further; null stays null.
template <class Byte>
Byte* shifted(Byte* at, std::size_t bytes)
{
    return at ? at + bytes : nullptr;
}

// A variable-length array or opaque. The layout is the same for all types of elements.
using Block = Counted<std::byte>;

// The declaration of a typedef.
inline const Use& targetOf(const Type& typeDefinition)
{
    return typeDefinition.members.front().use;
}

// The type at the end of a chain of typedefs that only give it another name, and of descriptions in other libraries;
// the type itself if it is neither.
const Type& canonicalType(const Type& type);

// The number in an object of a built-in type or an enumeration. The number of a float is its 32 bits.
std::int64_t loadNumber(const Type& scalar, const void* at);

// Writes such a number; the bits that the object has no place for are lost.
void storeNumber(const Type& scalar, void* at, std::int64_t number);

// The unit that carries the number on the wire.
std::uint32_t toUnit(const Type& scalar, std::int64_t number);

// The number that a decode makes of a unit; the bits that the object has no place for are lost.
std::int64_t fromUnit(const Type& scalar, std::uint32_t unit);

// Both ends are included.
struct Range {
    std::int64_t least;
    std::int64_t most;
};

// The numbers that an object of the type can hold. Those of an enumeration are all of 32 bits.
Range rangeOf(const Type& scalar);

// The name of the enumerator with this value; null if there is none, and for a type that is not an enumeration.
const char* enumeratorName(const Type& type, std::int64_t value);

// The arms of a union, in the order of the file; none for any other type.
inline std::span<const Member> armsOf(const Type& type)
{
    return type.kind == TypeKind::discriminatedUnion ? type.members.subspan(1) : std::span<const Member>();
}

// The arm that this value of the discriminant selects. Null if no case has the value: then the union refuses it, or
// accepts it without a member if `hasDefault`.
const Member* armOf(const Type& discriminatedUnion, std::int64_t value);

// The values of the discriminant that select the arm, ascending.
std::vector<std::int64_t> casesOf(const Type& discriminatedUnion, const Member& arm);

// Bytes of contents with their padding: `size` rounded up to whole units.
constexpr std::size_t padded(std::size_t size)
{
    return (size + 3) / 4 * 4;
}

// The canonical type of a union's discriminant: a built-in type or an enumeration.
const Type& discriminantOf(const Type& discriminatedUnion);

// An attribute: a struct where a number is followed by a union whose discriminant repeats it. Both have one type.
struct Attribute {
    const Member* id = nullptr;     // null if the struct is not an attribute
    const Member* value = nullptr;  // the union
};
Attribute attributeOf(const Type& structure);

// The shortest decimal text that reads back as the same finite float.
std::string floatText(float number);

// A number for people: "AKowner (1)", "true", "1.5", "-3".
std::string numberText(const Type& scalar, std::int64_t number);

}  // namespace quorva::inspect
