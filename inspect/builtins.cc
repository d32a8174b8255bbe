// The schema table's entries of the built-in types, which no interface file defines.

#include <quorvapixdr/schema.h>

namespace quorva::schema {

namespace {

template <class T>
constexpr Type scalar(const char* name, Builtin builtin, XdrRoutine routine, const char* doc)
{
    return {
        .name = name, .builtin = builtin, .doc = doc, .routine = routine, .size = sizeof(T), .alignment = alignof(T)};
}

}  // namespace

namespace types {

constinit const Type Boolean =
    scalar<::Boolean>("Boolean", Builtin::Boolean, XdrBoolean, "Truth value, held in one byte.");
constinit const Type ShortInteger = scalar<::ShortInteger>("ShortInteger", Builtin::ShortInteger, XdrShortInteger,
                                                           "8 bits, signed. Travels and shows without its sign.");
constinit const Type ShortNatural =
    scalar<::ShortNatural>("ShortNatural", Builtin::ShortNatural, XdrShortNatural, "8 bits, unsigned.");
constinit const Type Integer = scalar<::Integer>("Integer", Builtin::Integer, XdrInteger, "16 bits, signed.");
constinit const Type Natural = scalar<::Natural>("Natural", Builtin::Natural, XdrNatural, "16 bits, unsigned.");
constinit const Type LongInteger =
    scalar<::LongInteger>("LongInteger", Builtin::LongInteger, XdrLongInteger, "32 bits, signed.");
constinit const Type LongNatural =
    scalar<::LongNatural>("LongNatural", Builtin::LongNatural, XdrLongNatural, "32 bits, unsigned.");
constinit const Type UINT =
    scalar<::UINT>("UINT", Builtin::UINT, XdrUINT, "32 bits, unsigned. The trace shows it as if signed.");
constinit const Type Float = scalar<::Float>("Float", Builtin::Float, XdrFloat, "IEEE 754 single.");

}  // namespace types

std::span<const Type* const> builtins()
{
    static constexpr const Type* all[] = {&types::Boolean,     &types::ShortInteger, &types::ShortNatural,
                                          &types::Integer,     &types::Natural,      &types::LongInteger,
                                          &types::LongNatural, &types::UINT,         &types::Float};
    return all;
}

}  // namespace quorva::schema
