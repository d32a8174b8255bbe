// The teaching module's descriptions, for tests of the engine.
#pragma once

#include "tested_modules.h"

namespace quorva::types {
extern const Type AccessUnion, DoorState, Drive, EventUnion, Key, Locker, LockerIdSeq, Neighbour, Picture, Row,
    SignUnion, StationUnion, Visit;
}

namespace quorva::test {
inline const bool inspectorKnowsTheTeachingModule = !testedModules().empty();
}
