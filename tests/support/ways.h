// The two ways that a routine has over an object, and how to choose one without a text to look at.
#pragma once

#include "memory.h"

#include <Xdr.h>

namespace quorva::test {

// The plain functions of a type code it where no trace is collected; where one is, the interpreter codes it by its
// description.
enum class Way { plain, interpreted };

// A trace that has run out of memory: with it the interpreter runs, and the trace itself allocates nothing. Where
// memory cannot be made scarce, under the thread sanitizer, it is an ordinary trace that nobody clears.
inline TraceText& deafTrace()
{
    struct Deaf {
        TraceText trace;
        Deaf()
        {
            const Watch watch(0);
            for (int i = 0; trace.complete() && i < 100; ++i)
                trace.open("deaf");  // bounded, as memory may not be scarce
        }
    };
    thread_local Deaf deaf;
    return deaf.trace;
}

}  // namespace quorva::test
