// The exported functions that return the descriptions of the built-in types. Part of the codec's library alone: every
// library with types of its own has the descriptions, but need not export them a second time.

#include <quorvapixdr/description.h>

namespace quorva::description {

const Type& Boolean()
{
    return types::Boolean;
}
const Type& ShortInteger()
{
    return types::ShortInteger;
}
const Type& ShortNatural()
{
    return types::ShortNatural;
}
const Type& Integer()
{
    return types::Integer;
}
const Type& Natural()
{
    return types::Natural;
}
const Type& LongInteger()
{
    return types::LongInteger;
}
const Type& LongNatural()
{
    return types::LongNatural;
}
const Type& UINT()
{
    return types::UINT;
}
const Type& Float()
{
    return types::Float;
}

}  // namespace quorva::description
