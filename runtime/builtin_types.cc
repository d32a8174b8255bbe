// The descriptions of the built-in types.

#include <quorvapixdr/description.h>

namespace quorva {

namespace {

template <class T>
constexpr Type builtin(const char* name, Builtin which, XdrRoutine routine)
{
    return {.name = name, .builtin = which, .size = sizeof(T), .alignment = alignof(T), .routine = routine};
}

}  // namespace

constinit const Type types::Boolean = builtin<::Boolean>("Boolean", Builtin::Boolean, XdrBoolean);
constinit const Type types::ShortInteger = builtin<::ShortInteger>("ShortInteger", Builtin::ShortInteger, XdrShortInteger);
constinit const Type types::ShortNatural = builtin<::ShortNatural>("ShortNatural", Builtin::ShortNatural, XdrShortNatural);
constinit const Type types::Integer = builtin<::Integer>("Integer", Builtin::Integer, XdrInteger);
constinit const Type types::Natural = builtin<::Natural>("Natural", Builtin::Natural, XdrNatural);
constinit const Type types::LongInteger = builtin<::LongInteger>("LongInteger", Builtin::LongInteger, XdrLongInteger);
constinit const Type types::LongNatural = builtin<::LongNatural>("LongNatural", Builtin::LongNatural, XdrLongNatural);
constinit const Type types::UINT = builtin<::UINT>("UINT", Builtin::UINT, XdrUINT);
constinit const Type types::Float = builtin<::Float>("Float", Builtin::Float, XdrFloat);

}  // namespace quorva
