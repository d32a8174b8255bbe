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
