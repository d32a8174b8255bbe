// The descriptions of the teaching module, which the inspector knows from the start of the program.
#pragma once

#include "tested_modules.h"

namespace quorva::types {
extern const Type AccessUnion, DoorState, Drive, EventUnion, Key, Locker, LockerIdSeq, Neighbour, Picture, Row,
    SignUnion, StationUnion, Visit;
}

namespace quorva::test {
inline const bool inspectorKnowsTheTeachingModule = !testedModules().empty();
}
