// Made from stair.x by quorvaxdrc. Change the interface file, not this one.
#include <quorvapixdr/stair.bodies.h>

using namespace quorva::walk;
namespace coder = quorva::coder;

// A body in place, where nothing is named like a scope of the generated code.   stair.x:4
QUORVA_IN_PLACE(Stair)

int XdrStair(Xdr* xdrs, void* object)
{
    return run<Stair>(xdrs, object);
}
