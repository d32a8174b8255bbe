// Made from locker.x by quorvaxdrc. Change the interface file, not this one.
// What the units of other modules need of its bodies; no part of the library's interface.
#pragma once

#include <quorvapixdr/locker.h>
#include <quorvapixdr/colours.bodies.h>
#include <quorvapixdr/walk.h>

template <class Pass>
quorva::walk::At code(Pass& pass, quorva::walk::At at, LockerIdSeq& obj);
template <class Pass>
quorva::walk::At code(Pass& pass, quorva::walk::At at, Picture& obj);
template <class Pass>
quorva::walk::At code(Pass& pass, quorva::walk::At at, Locker& obj);
template <class Pass>
quorva::walk::At code(Pass& pass, quorva::walk::At at, AccessUnion& obj);
template <class Pass>
quorva::walk::At code(Pass& pass, quorva::walk::At at, StationUnion& obj);
template <class Pass>
quorva::walk::At code(Pass& pass, quorva::walk::At at, Drive& obj);
template <class Pass>
quorva::walk::At code(Pass& pass, quorva::walk::At at, EventUnion& obj);
template <class Pass>
quorva::walk::At code(Pass& pass, quorva::walk::At at, SignUnion& obj);
template <class Pass>
quorva::walk::At code(Pass& pass, quorva::walk::At at, Visit& obj);

// locker.x:25
template <class Pass>
QUORVA_INLINE quorva::walk::At inPlace(Pass& pass, quorva::walk::At at, LockerIdSeq& obj)
{
    using namespace quorva::walk;
    namespace coder = quorva::coder;
    return parts(pass, at, list(untagged, obj, PanelDoors, coder::LockerId));
}

// of the door's last visitor   locker.x:29
template <class Pass>
QUORVA_INLINE quorva::walk::At inPlace(Pass& pass, quorva::walk::At at, Picture& obj)
{
    using namespace quorva::walk;
    namespace coder = quorva::coder;
    return parts(pass, at, bytes(untagged, obj, 65535));
}
