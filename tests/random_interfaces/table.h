// The types of a random library, which run.py writes a table of.
#pragma once

#include <quorvapixdr/primitives.h>

#include <cstddef>

struct Entry {
    const char* name;
    XdrRoutine routine;
    std::size_t size;
};

extern const Entry table[];
