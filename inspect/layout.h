// Objects in memory by their descriptions: where a member is, and what a number, an arm or an enumerator is.
//
// Addresses are those of whole objects of the type in question; nothing here checks them.
#pragma once

#include "documentation.h"

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string>

namespace quorva::inspect {

// Elements inside elements beyond this many are refused everywhere in the inspector: only a message or a JSON text made
// to exhaust the stack has them.
inline constexpr std::size_t deepestNesting = 512;

template <class T>
T load(const void* at)
{
    T value;
    std::memcpy(&value, at, sizeof value);
    return value;
}

template <class T>
void store(void* at, T value)
{
    std::memcpy(at, &value, sizeof value);
}

// The address `bytes` further on; null stays null.
template <class Byte>
Byte* shifted(Byte* at, std::size_t bytes)
{
    return at ? at + bytes : nullptr;
}

// A variable-length array or opaque of any element type: all have these two members.
using Block = Counted<std::byte>;

// What a typedef names.
inline const Use& targetOf(const Type& typeDefinition)
{
    return typeDefinition.members.front().use;
}

// The type that an alias stands for, however many aliases there are; any other type itself.
const Type& resolved(const Type& type);

// Numbers of built-in types and enumerations. A float's number is its 32 bits.
std::int64_t loadNumber(const Type& scalar, const void* at);
void storeNumber(const Type& scalar, void* at, std::int64_t number);

// The same number as the unit that carries it on the wire, and back (where what does not fit is cut off).
std::uint32_t toUnit(const Type& scalar, std::int64_t number);
std::int64_t fromUnit(const Type& scalar, std::uint32_t unit);

struct Range {
    std::int64_t least;
    std::int64_t most;
};
Range rangeOf(const Type& scalar);

// The enumerator with this value, or null.
const Enumerator* enumeratorOf(const Type& enumeration, std::int64_t value);

// The arms of a union, in the order of the file; none for any other type.
inline std::span<const Member> armsOf(const Type& type)
{
    return type.kind == TypeKind::discriminatedUnion ? type.members.subspan(1) : std::span<const Member>();
}

// The arm that this discriminant value selects, or null: then the default arm, if the union has one.
const Member* armOf(const Type& discriminatedUnion, std::int64_t value);

// The discriminant values that select the arm, ascending.
std::vector<std::int64_t> casesOf(const Type& discriminatedUnion, const Member& arm);

// The type of a union's discriminant: a built-in type or an enumeration.
const Type& discriminantOf(const Type& discriminatedUnion);

// The shortest decimal text that reads back as the same finite float.
std::string floatText(float number);

// A number as people read it: "AKowner (1)", "true", "1.5", "-3".
std::string numberText(const Type& scalar, std::int64_t number);

}  // namespace quorva::inspect
