// The table of the types of a random library, which trial.py writes.
#pragma once

#include <quorvapixdr/primitives.h>

#include <cstddef>

namespace random_interfaces {  // as the types of a library may have any name

struct Entry {
    const char* name;
    XdrRoutine routine;
    std::size_t size;
};

extern const Entry table[];

}  // namespace random_interfaces
