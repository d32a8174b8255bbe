// The two ways that a routine has over an object, and how to choose one without a text to look at.
#pragma once

#include "memory.h"

#include <Xdr.h>

namespace quorva::test {

// The two ways through a generated body. Where nobody collects a trace, direct passes move the bytes; where somebody does,
// a traced pass moves them part by part, and odd parts go through the primitives.
enum class Way { direct, traced };

// A trace that has run out of memory: it keeps a pass traced, and allocates nothing itself. Where memory
// cannot be made scarce, under the thread sanitizer, it is an ordinary trace that nobody clears.
inline TraceText& deafTrace()
{
    struct Deaf {
        TraceText trace;
        Deaf()
        {
            const Watch watch(0);
            for (int i = 0; trace.complete() && i < 100; ++i) trace.open("deaf");  // bounded, as memory may not be scarce
        }
    };
    thread_local Deaf deaf;
    return deaf.trace;
}

}  // namespace quorva::test
