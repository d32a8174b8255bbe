// The descriptions of the built-in types.

#include <quorvapixdr/description.h>

namespace quorva::types {

constinit const Type Boolean = leaf<::Boolean>(TypeKind::builtin, "Boolean", XdrBoolean, Builtin::Boolean);
constinit const Type ShortInteger =
    leaf<::ShortInteger>(TypeKind::builtin, "ShortInteger", XdrShortInteger, Builtin::ShortInteger);
constinit const Type ShortNatural =
    leaf<::ShortNatural>(TypeKind::builtin, "ShortNatural", XdrShortNatural, Builtin::ShortNatural);
constinit const Type Integer = leaf<::Integer>(TypeKind::builtin, "Integer", XdrInteger, Builtin::Integer);
constinit const Type Natural = leaf<::Natural>(TypeKind::builtin, "Natural", XdrNatural, Builtin::Natural);
constinit const Type LongInteger =
    leaf<::LongInteger>(TypeKind::builtin, "LongInteger", XdrLongInteger, Builtin::LongInteger);
constinit const Type LongNatural =
    leaf<::LongNatural>(TypeKind::builtin, "LongNatural", XdrLongNatural, Builtin::LongNatural);
constinit const Type UINT = leaf<::UINT>(TypeKind::builtin, "UINT", XdrUINT, Builtin::UINT);
constinit const Type Float = leaf<::Float>(TypeKind::builtin, "Float", XdrFloat, Builtin::Float);

}  // namespace quorva::types
