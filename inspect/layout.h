// Objects in memory as the schema describes them: where a part stands, and what a number, an arm or an enumerator is.
//
// Addresses are those of whole objects of the type in question; nothing here checks them.
#pragma once

#include <quorvapixdr/schema.h>

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

// A list or counted bytes of any element type: all have these two members.
using Block = Counted<std::byte>;

// The type behind aliases of it.
const schema::Type& resolved(const schema::Type& type);

// Numbers of built-in types and enumerations. A float's number is its 32 bits.
std::int64_t loadNumber(const schema::Type& scalar, const void* at);
void storeNumber(const schema::Type& scalar, void* at, std::int64_t number);

// The same number as the unit that carries it on the wire, and back (where what does not fit is cut off).
std::uint32_t toUnit(const schema::Type& scalar, std::int64_t number);
std::int64_t fromUnit(const schema::Type& scalar, std::uint32_t unit);

struct Range {
    std::int64_t least;
    std::int64_t most;
};
Range rangeOf(const schema::Type& scalar);

// The enumerator with this value, or null.
const schema::Enumerator* enumeratorOf(const schema::Type& enumeration, std::int64_t value);

// The arm that this discriminant value selects, or null: then the default arm, if the union has one.
const schema::Arm* armOf(const schema::Type& discriminated, std::int64_t value);

// The type of a union's discriminant: a built-in type or an enumeration.
const schema::Type& discriminantOf(const schema::Type& discriminated);

// The shortest decimal text that reads back as the same finite float.
std::string floatText(float number);

// A number as people read it: "AKowner (1)", "true", "1.5", "-3".
std::string numberText(const schema::Type& scalar, std::int64_t number);

}  // namespace quorva::inspect
