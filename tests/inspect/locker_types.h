// The teaching module's entries in the schema table, for tests of the engine.
#pragma once

#include <quorvapixdr/schema.h>

namespace quorva::schema::types {
extern const Type AccessUnion, DoorState, Drive, EventUnion, Key, Locker, LockerIdSeq, Neighbour, Picture, Row,
    SignUnion, StationUnion, Visit;
}
