// Made from stair.x by quorvaxdrc. Change the interface file, not this one.
// What the units of other modules need of its bodies; no part of the library's interface.
#pragma once

#include <quorvapixdr/stair.h>
#include <quorvapixdr/steps.bodies.h>
#include <quorvapixdr/walk.h>

template <class Pass>
quorva::walk::At code(Pass& pass, quorva::walk::At at, Upper& obj);
template <class Pass>
quorva::walk::At code(Pass& pass, quorva::walk::At at, Lower& obj);

// A body in place, where nothing is named like a scope of the generated code.    stair.x:9
template <class Pass>
quorva::walk::At code(Pass& pass, quorva::walk::At at, Stair& obj)
{
    using namespace quorva::walk;
    namespace coder = quorva::coder;
    return parts(pass, at,
            field("height", obj.height, coder::Natural),
            quorva::walk::vector("widths", obj.widths, coder::Natural));
}
