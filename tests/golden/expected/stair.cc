// Made from stair.x by quorvaxdrc. Change the interface file, not this one.
#include <quorvapixdr/stair.bodies.h>

using namespace quorva::walk;
namespace coder = quorva::coder;

// The first of a file, and one that leads back to it.   stair.x:4
template <class Pass>
At code(Pass& pass, At at, Upper& obj)
{
    return parts(pass, at,
            optional("below", obj.below, coder::Lower));
}
QUORVA_BODY(Upper)

int XdrUpper(Xdr* xdrs, void* object)
{
    return run<Upper>(xdrs, object);
}

// stair.x:5
template <class Pass>
At code(Pass& pass, At at, Lower& obj)
{
    return parts(pass, at,
            optional("above", obj.above, coder::Upper));
}
QUORVA_BODY(Lower)

int XdrLower(Xdr* xdrs, void* object)
{
    return run<Lower>(xdrs, object);
}

// A body in place, where nothing is named like a scope of the generated code.    stair.x:9
int XdrStair(Xdr* xdrs, void* object)
{
    return run<Stair>(xdrs, object);
}
