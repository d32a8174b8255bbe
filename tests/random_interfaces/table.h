// The types of a random library, which run.py writes a table of.
#pragma once

#include <quorvapixdr/primitives.h>

#include <cstddef>

namespace random_interfaces {  // since the types of a library may have any name

struct Entry {
    const char* name;
    XdrRoutine routine;
    std::size_t size;
};

extern const Entry table[];

}  // namespace random_interfaces
