// The schema table's entries of the built-in types, which no interface file defines.

#include <quorvapixdr/schema.h>

namespace quorva::schema {

namespace types {

constinit const Type Boolean = {.name = "Boolean", .builtin = Builtin::Boolean, .doc = "Truth value, held in one byte.",
    .routine = XdrBoolean, .size = sizeof(::Boolean), .alignment = alignof(::Boolean)};

constinit const Type ShortInteger = {.name = "ShortInteger", .builtin = Builtin::ShortInteger,
    .doc = "8 bits, signed. Travels and shows without its sign.",
    .routine = XdrShortInteger, .size = sizeof(::ShortInteger), .alignment = alignof(::ShortInteger)};

constinit const Type ShortNatural = {.name = "ShortNatural", .builtin = Builtin::ShortNatural, .doc = "8 bits, unsigned.",
    .routine = XdrShortNatural, .size = sizeof(::ShortNatural), .alignment = alignof(::ShortNatural)};

constinit const Type Integer = {.name = "Integer", .builtin = Builtin::Integer, .doc = "16 bits, signed.",
    .routine = XdrInteger, .size = sizeof(::Integer), .alignment = alignof(::Integer)};

constinit const Type Natural = {.name = "Natural", .builtin = Builtin::Natural, .doc = "16 bits, unsigned.",
    .routine = XdrNatural, .size = sizeof(::Natural), .alignment = alignof(::Natural)};

constinit const Type LongInteger = {.name = "LongInteger", .builtin = Builtin::LongInteger, .doc = "32 bits, signed.",
    .routine = XdrLongInteger, .size = sizeof(::LongInteger), .alignment = alignof(::LongInteger)};

constinit const Type LongNatural = {.name = "LongNatural", .builtin = Builtin::LongNatural, .doc = "32 bits, unsigned.",
    .routine = XdrLongNatural, .size = sizeof(::LongNatural), .alignment = alignof(::LongNatural)};

constinit const Type UINT = {.name = "UINT", .builtin = Builtin::UINT, .doc = "32 bits, unsigned. The trace shows it as if signed.",
    .routine = XdrUINT, .size = sizeof(::UINT), .alignment = alignof(::UINT)};

constinit const Type Float = {.name = "Float", .builtin = Builtin::Float, .doc = "IEEE 754 single.",
    .routine = XdrFloat, .size = sizeof(::Float), .alignment = alignof(::Float)};

}  // namespace types

std::span<const Type* const> builtins()
{
    static constexpr const Type* all[] = {&types::Boolean, &types::ShortInteger, &types::ShortNatural,
                                          &types::Integer, &types::Natural,      &types::LongInteger,
                                          &types::LongNatural, &types::UINT,     &types::Float};
    return all;
}

}  // namespace quorva::schema
